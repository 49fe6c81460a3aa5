#include <algorithm>
#include <array>
#include <iostream>

#include "Demo.h"

namespace demo {
namespace {

using harvlink::ControlGroupId;

constexpr int unknownGroup = -59959039;

/// Asks for every possible group: the controller refuses the groups that it does not have.
void ListGroups(harvlink::QuorvanController& robot) {
    int known = 0;
    for (int number = 1; number <= 44; ++number) {
        auto const group = static_cast<ControlGroupId>(number);
        std::array<char, 8> letters{};
        auto const status = robot.ControlGroup->ReadAxisConfiguration(group, letters);
        bool const isGap = number == 9 || number == 10 || number == 19 || number == 20;
        if (isGap || status.StatusCode == unknownGroup) {
            continue;
        }
        Require(status, "read the axis configuration");
        auto const count = std::ranges::count_if(letters, [](char letter) { return letter != '\0'; });
        std::cout << group << ": " << count << " axes\n";
        ++known;
    }
    Require(known > 0, "the controller has no control group");
}

void ShowPosition(harvlink::QuorvanController& robot, harvlink::CoordinateType type) {
    harvlink::PositionData position;
    Require(robot.ControlGroup->ReadPositionData(ControlGroupId::R1, type, 1, 0, position), "read the position of R1");
    std::cout << position << "\n\n";
}

} // namespace

void ShowControlGroups(harvlink::QuorvanController& robot) {
    Title("Control groups");
    ListGroups(robot);
    ShowPosition(robot, harvlink::CoordinateType::Pulse);
    ShowPosition(robot, harvlink::CoordinateType::BaseCoordinate);
}

} // namespace demo
