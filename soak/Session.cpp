#include "soak/Session.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace harvlink::soak {

namespace {

constexpr int MostAnswerless = 20;
constexpr int MostOpenings = 200;
constexpr std::uint16_t OldestLastIndex = 99; ///< of byte variables of the older generation
constexpr std::uint16_t NewestLastIndex = 511;
constexpr std::uint16_t UnusedPosition = 100; ///< a position variable that no worker looks at

/// Repeats over missing answers.
template <typename Call>
bool Succeeds(Ledger& ledger, Family family, Call const& call) {
    for (int tries = 0; tries < MostAnswerless; ++tries) {
        auto const status = call();
        ledger.Note(family, status);
        if (!IsTimeout(status)) {
            return status.StatusCode == 0;
        }
    }
    return false;
}

bool KnowsGroups(QuorvanController& robot, Ledger& ledger) {
    constexpr std::array groups{ControlGroupId::R1, ControlGroupId::B1, ControlGroupId::S1};
    return std::ranges::all_of(groups, [&](ControlGroupId group) {
        PositionData position;
        return Succeeds(ledger, Family::ControlGroup, [&] {
            return robot.ControlGroup->ReadPositionData(group, CoordinateType::Pulse, 0, 0, position);
        });
    });
}

bool KnowsTools(QuorvanController& robot, int highest, Ledger& ledger) {
    RobotPositionVariableData variable{.positionData = {.toolNumber = highest}, .variableIndex = UnusedPosition};
    return Succeeds(ledger, Family::Variables, [&] { return robot.Variables->robotPositionVariable->Write(variable); });
}

/// The last one exists only if counting is right.
bool CountsVariables(QuorvanController& robot, bool isExtended, Ledger& ledger) {
    ByteVariableData variable;
    auto const last = isExtended ? NewestLastIndex : OldestLastIndex;
    return Succeeds(ledger, Family::Variables, [&] { return robot.Variables->byteVariable->Read(last, variable); });
}

/// Asked for their progress, as only the slots that the connection knows can be.
bool KnowsMotionSlots(QuorvanController& robot, Ledger& ledger) {
    StatusInfo status;
    constexpr std::array groups{ControlGroupId::R1, ControlGroupId::B1, ControlGroupId::S1};
    return std::ranges::all_of(groups, [&](ControlGroupId group) {
        return Succeeds(ledger, Family::MotionManager, [&] {
            static_cast<void>(robot.MotionManager->GetMotionTargetProgress(group, status));
            return status;
        });
    });
}

bool IsWhole(QuorvanController& robot, bool isExtended, Options const& options, Ledger& ledger) {
    return KnowsGroups(robot, ledger) && KnowsTools(robot, options.HighestTool(), ledger) &&
           CountsVariables(robot, isExtended, ledger) && (!isExtended || KnowsMotionSlots(robot, ledger));
}

} // namespace

Connection OpenWhole(std::string const& address, bool isExtended, Options const& options, Ledger& ledger) {
    StatusInfo status;
    auto robot = Connect(address, status, Options::TimeoutMilliseconds, Options::Retries);
    ledger.Note(Family::Connection, status);
    if (robot != nullptr && !IsWhole(*robot, isExtended, options, ledger)) {
        robot.reset();
    }
    if (robot == nullptr) {
        ledger.Note(Survived::IncompleteStart);
    }
    return robot;
}

Connection OpenAtLast(std::string const& address, bool isExtended, Options const& options, Ledger& ledger) {
    for (int tries = 0; tries < MostOpenings; ++tries) {
        if (auto robot = OpenWhole(address, isExtended, options, ledger)) {
            return robot;
        }
    }
    throw std::runtime_error("no connection to " + address);
}

} // namespace harvlink::soak
