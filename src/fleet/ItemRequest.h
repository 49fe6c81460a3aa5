#pragma once

#include "controller/AlarmRequests.h"
#include "controller/ControlGroupRequests.h"
#include "controller/JobRequests.h"
#include "controller/OperatingTimeRequest.h"
#include "controller/PositionRequests.h"
#include "controller/StateRequests.h"
#include "controller/SystemRequests.h"
#include "fleet/ControllerFacts.h"
#include "fleet/Item.h"
#include "io/SignalRequests.h"
#include "motion/MotionRequests.h"
#include "variables/VariableRequests.h"

namespace harvlink::fleet {

/// The same for a variable.
template <typename Use>
decltype(auto) WithVariable(Item const& item, ControllerFacts const& facts, Use const& use) {
    auto const index = static_cast<unsigned short>(item.index);
    switch (item.Kind()) {
    case FleetItemKind::ByteVariable:
        return use(ScalarRead<std::uint8_t>(CommandNumber::ByteVariable, index, facts.rs22));
    case FleetItemKind::IntegerVariable:
        return use(ScalarRead<std::int16_t>(CommandNumber::IntegerVariable, index, facts.rs22));
    case FleetItemKind::DoubleIntVariable:
        return use(ScalarRead<std::int32_t>(CommandNumber::DoubleIntVariable, index, facts.rs22));
    case FleetItemKind::RealVariable:
        return use(ScalarRead<float>(CommandNumber::RealVariable, index, facts.rs22));
    case FleetItemKind::StringVariable:
        return use(StringRead(CommandNumber::StringVariable, index, facts.rs22));
    case FleetItemKind::RobotPositionVariable:
        return use(RobotPositionVariableRead(CommandNumber::RobotPositionVariable, index, facts.rs22));
    case FleetItemKind::BasePositionVariable:
        return use(BasePositionVariableRead(CommandNumber::BasePositionVariable, index, facts.rs22));
    default:
        return use(StationPositionVariableRead(CommandNumber::StationPositionVariable, index, facts.rs22));
    }
}

template <typename Use>
decltype(auto) WithPosition(Item const& item, ControllerFacts const& facts, Use const& use) {
    if (IsReadByRobotPosition(item.Coordinate(), facts.generation)) {
        return use(RobotPositionRequest(item.ControlGroup(), item.Coordinate()));
    }
    return use(
        ExtendedPositionRequest(item.ControlGroup(), item.Coordinate(), item.userCoordinateNumber, item.toolNumber));
}

/// Calls `use` with the request that reads an item, and returns its result. `part` counts the exchanges of the item.
template <typename Use>
decltype(auto) WithRequest(Item const& item, unsigned part, ControllerFacts const& facts, Use const& use) {
    switch (item.Kind()) {
    case FleetItemKind::State:
        return use(StateRequest{});
    case FleetItemKind::Job:
        return use(ExecutingJobRequest(static_cast<TesselTaskNumber>(item.index)));
    case FleetItemKind::Alarms:
        return use(AlarmRequest{CommandNumber::AlarmDataRead, static_cast<std::uint16_t>(part + 1)});
    case FleetItemKind::Position:
        return WithPosition(item, facts, use);
    case FleetItemKind::Torque:
        return use(TorqueRequest(item.ControlGroup()));
    case FleetItemKind::PositionError:
        return use(PositionErrorRequest(item.ControlGroup()));
    case FleetItemKind::Signal:
    case FleetItemKind::SignalGroup:
        return use(SignalGroupRead(item.index / 10 * 10));
    case FleetItemKind::Register:
        return use(RegisterRead{static_cast<std::uint16_t>(item.index)});
    case FleetItemKind::OperatingTime:
        return use(OperatingTimeRequest{TimeCounterInstance(item.ControlGroup(), static_cast<TimeType>(item.index),
                                                            static_cast<ApplicationNumber>(item.detail))});
    case FleetItemKind::Software:
        return use(SystemInformationRequest(static_cast<SystemInfoId>(item.index)));
    case FleetItemKind::TargetProgress:
        return use(TargetProgressRequest{static_cast<TargetControlGroup>(item.index)});
    default:
        return WithVariable(item, facts, use);
    }
}

} // namespace harvlink::fleet
