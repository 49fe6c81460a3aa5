#include "fleet/ItemCheck.h"

#include <array>
#include <cmath>

#include "controller/OperatingTimeRequest.h"
#include "fleet/Item.h"
#include "fleet/Record.h"
#include "io/IOAddressMap.h"
#include "motion/MotionMessages.h"
#include "variables/VariableRequests.h"

namespace harvlink::fleet {
namespace {

constexpr std::uint64_t highestInstance = 0xffff;
constexpr std::int32_t axisCount = 8;
constexpr std::size_t kindCount = 20;

bool IsKind(FleetItemKind kind) {
    return static_cast<std::uint32_t>(kind) < kindCount;
}

bool IsVariable(FleetItemKind kind) {
    return kind >= FleetItemKind::ByteVariable && kind <= FleetItemKind::StationPositionVariable;
}

bool IsRow(FleetItemKind kind) {
    return IsVariable(kind) || kind == FleetItemKind::Signal || kind == FleetItemKind::SignalGroup ||
           kind == FleetItemKind::Register;
}

bool HasAxes(FleetItemKind kind) {
    return kind == FleetItemKind::Position || kind == FleetItemKind::Torque || kind == FleetItemKind::PositionError;
}

/// Whether it is a number, or axes.
bool HasNumbers(FleetItem const& item) {
    switch (item.kind) {
    case FleetItemKind::State:
    case FleetItemKind::Job:
    case FleetItemKind::Alarms:
    case FleetItemKind::StringVariable:
    case FleetItemKind::Signal:
    case FleetItemKind::OperatingTime:
    case FleetItemKind::Software:
        return false;
    default:
        return true;
    }
}

bool IsControlGroup(ControlGroupId group) {
    using enum ControlGroupId;
    return (group >= R1 && group <= R8) || (group >= B1 && group <= B8) || (group >= S1 && group <= S24);
}

bool IsCoordinate(CoordinateType type) {
    return type == CoordinateType::Pulse || type == CoordinateType::BaseCoordinate ||
           type == CoordinateType::RobotCoordinate || type == CoordinateType::UserCoordinate;
}

std::string WhyNotPosition(FleetItem const& item) {
    if (!IsCoordinate(item.coordinate)) {
        return "a position is read in pulse, base, robot or user coordinates";
    }
    constexpr int mostUserCoordinates = 63;
    bool const isUser = item.coordinate == CoordinateType::UserCoordinate;
    if (isUser && (item.userCoordinateNumber < 1 || item.userCoordinateNumber > mostUserCoordinates)) {
        return "user coordinates are numbered 1 to 63";
    }
    return {};
}

std::string WhyNotSignal(FleetItem const& item, ControllerVersion generation) {
    constexpr std::uint32_t firstAddress = 10;
    constexpr std::uint32_t signalsOfGroup = 8;
    std::uint32_t const bit = item.index % firstAddress;
    bool const isSignal = item.kind == FleetItemKind::Signal;
    if (item.index < firstAddress || bit >= (isSignal ? signalsOfGroup : 1)) {
        return isSignal ? "no signal has this address" : "the address of a group is a multiple of 10, from 10 up";
    }
    std::uint32_t const last = MakeItem(item, item.count - 1).index;
    if (last / firstAddress > highestInstance) {
        return "no signal has so high an address";
    }
    if (generation == ControllerVersion::VersionUnknown) {
        return {};
    }
    constexpr auto lastClass = static_cast<std::uint32_t>(IOType::PseudoInput);
    for (std::uint32_t type = 0; type <= lastClass; ++type) {
        AddressRange const range = GetAddressRange(static_cast<IOType>(type), generation);
        if (range.Contains(item.index) && range.Contains(last)) {
            return {};
        }
    }
    return "this generation does not have these signals";
}

std::string WhyNotIndex(FleetItem const& item, ControllerVersion generation) {
    std::uint64_t const last = std::uint64_t{item.index} + item.count - 1;
    if (IsVariable(item.kind)) {
        return last > MaxVariableIndex ? "variables are numbered 0 to 2048" : "";
    }
    switch (item.kind) {
    case FleetItemKind::Signal:
    case FleetItemKind::SignalGroup:
        return WhyNotSignal(item, generation);
    case FleetItemKind::OperatingTime: {
        auto const type = static_cast<TimeType>(item.index);
        auto const application = static_cast<ApplicationNumber>(item.detail);
        return TimeCounterInstance(item.group, type, application) == NoTimeCounter ? "there is no such time counter"
                                                                                   : "";
    }
    case FleetItemKind::TargetProgress:
        return item.index >= MotionSlots ? "motion slots are numbered 0 to 3" : "";
    case FleetItemKind::Job:
        return last >= highestInstance ? "there is no such task" : "";
    default:
        return last > highestInstance ? "the number is too high" : "";
    }
}

std::string WhyNotAnywhere(FleetItem const& item, ControllerVersion generation) {
    if (!IsKind(item.kind)) {
        return "its kind is not one of FleetItemKind";
    }
    if (item.count == 0 || (item.count > 1 && !IsRow(item.kind)) || item.count > highestInstance) {
        return "its count is not 1, or for variables, signals and registers up to 65535";
    }
    if (!IsControlGroup(item.group)) {
        return "its control group is unknown: there are R1 to R8, B1 to B8 and S1 to S24";
    }
    if (item.axis < -1 || item.axis >= axisCount || (item.axis >= 0 && !HasAxes(item.kind))) {
        return "its axis is not -1, or for positions, torques and position errors 0 to 7";
    }
    if (item.detail < 0 || item.detail > static_cast<std::int32_t>(highestInstance)) {
        return "its detail is not 0 to 65535";
    }
    if (!std::isfinite(item.deadBand) || item.deadBand < 0.0 || (item.deadBand > 0.0 && !HasNumbers(item))) {
        return "its dead band is negative, or it is not a number";
    }
    if (item.kind == FleetItemKind::Position) {
        return WhyNotPosition(item);
    }
    return WhyNotIndex(item, generation);
}

std::string WhyNotGeneration(FleetItem const& item, ControllerVersion generation) {
    if (generation == ControllerVersion::VersionUnknown) {
        return {};
    }
    std::int32_t const code = RefusalByGeneration(MakeItem(item, 0), generation);
    return code == 0 ? "" : "this generation does not have it (" + StatusInformation(code).Message + ")";
}

} // namespace

std::string WhyNot(FleetItem const& item, ControllerVersion generation) {
    std::string const what = WhyNotAnywhere(item, generation);
    return what.empty() ? WhyNotGeneration(item, generation) : what;
}

} // namespace harvlink::fleet
