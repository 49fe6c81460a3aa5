#include "fleet/ItemCheck.h"

#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace harvlink::fleet {
namespace {

using enum FleetItemKind;
using enum ControllerVersion;

struct Case {
    FleetItem item;
    std::string why; ///< part of the reason; empty if the item is valid
    ControllerVersion generation = VersionUnknown;
};

std::vector<Case> Cases() {
    auto const item = [](FleetItemKind kind, std::uint32_t index, std::uint32_t count = 1) {
        return FleetItem{.kind = kind, .index = index, .count = count};
    };
    auto const position = [](CoordinateType type, std::uint8_t user) {
        return FleetItem{.kind = Position, .coordinate = type, .userCoordinateNumber = user};
    };
    std::vector<Case> cases{
        {item(FleetItemKind{20}, 0), "its kind"},
        {item(Register, 0, 0), "its count"},
        {item(State, 0, 2), "its count"},
        {item(Register, 0, 0x10000), "its count"},
        {item(Register, 0xffff), ""},
        {item(Register, 0xffff, 2), "too high"},
        {item(ByteVariable, 2048), ""},
        {item(ByteVariable, 2048, 2), "0 to 2048"},
        {item(StationPositionVariable, 2049), "0 to 2048"},
        {item(Signal, 9), "no signal"},
        {item(Signal, 10018), "no signal"},
        {item(Signal, 655360), "so high"},
        {item(SignalGroup, 10011), "multiple of 10"},
        {item(SignalGroup, 10010), ""},
        {item(SignalGroup, 10010), "", VersionYA},
        {item(Signal, 99990), "this generation", VersionYA},
        {item(OperatingTime, 999), "time counter"},
        {item(TargetProgress, 3), ""},
        {item(TargetProgress, 4), "0 to 3"},
        {item(TargetProgress, 0), "this generation", VersionFS},
        {item(Job, 0xffff), "task"},
        {position(CoordinateType::JointAngle, 1), "pulse, base"},
        {position(CoordinateType::RobotCoordinate, 0), ""},
        {position(CoordinateType::UserCoordinate, 0), "1 to 63"},
        {position(CoordinateType::UserCoordinate, 63), ""},
        {position(CoordinateType::UserCoordinate, 64), "1 to 63"},
    };
    for (int const group : {0, 9, 10, 19, 20, 45}) {
        cases.push_back({{.kind = Torque, .group = static_cast<ControlGroupId>(group)}, "control group"});
    }
    for (int const group : {8, 11, 18, 21, 44}) {
        cases.push_back({{.kind = PositionError, .group = static_cast<ControlGroupId>(group), .axis = 7}, ""});
    }
    for (int const axis : {-2, 8}) {
        cases.push_back({{.kind = Torque, .axis = axis}, "its axis"});
    }
    cases.push_back({{.kind = State, .axis = 0}, "its axis"});
    for (int const detail : {-1, 0x10000}) {
        cases.push_back({{.kind = State, .detail = detail}, "its detail"});
    }
    for (double const band :
         {-1.0, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        cases.push_back({{.kind = ByteVariable, .deadBand = band}, "dead band"});
    }
    for (FleetItemKind const kind : {State, Job, Alarms, StringVariable, Signal, OperatingTime, Software}) {
        cases.push_back({{.kind = kind, .index = 10, .deadBand = 1.0}, "dead band"});
    }
    return cases;
}

TEST(ItemCheck, NamesWhatIsWrongWithAnItem) {
    for (Case const& each : Cases()) {
        std::string const why = WhyNot(each.item, each.generation);
        EXPECT_TRUE(each.why.empty() ? why.empty() : why.find(each.why) != std::string::npos)
            << static_cast<int>(each.item.kind) << ' ' << each.item.index << " '" << each.why << "': " << why;
    }
}

} // namespace
} // namespace harvlink::fleet
