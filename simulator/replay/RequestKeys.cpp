#include "simulator/replay/RequestKeys.h"

#include <map>
#include <string_view>

#include "controller/ControlGroupMessages.h"
#include "harvlink/ControlGroupId.h"
#include "motion/MotionMessages.h"
#include "recording/model/Kinds.h"

namespace harvlink::simulator {

namespace {

namespace kind = recording::kind;
using recording::RecordedReading;

constexpr unsigned BaseCoordinateOffset = 100;

RequestKey Key(CommandNumber command, unsigned instance, std::uint64_t detail = 0) {
    return {static_cast<std::uint16_t>(command), static_cast<std::uint16_t>(instance), detail};
}

std::uint64_t Selection(UAPIGetPositionSendData const& asked) {
    GroupAddress const& group = asked.group;
    return (std::uint64_t{group.kind} << 40U) | (std::uint64_t{group.index} << 32U) |
           (std::uint64_t{asked.coordinateSelector} << 16U) | asked.toolNumber;
}

std::vector<RequestKey> PositionKeys(RecordedReading const& reading) {
    auto const group = static_cast<unsigned>(reading.group);
    auto const coordinate = static_cast<CoordinateType>(reading.coordinate);
    if (coordinate == CoordinateType::Pulse) {
        return {Key(CommandNumber::RobotPositionRead, group)};
    }
    UAPIGetPositionSendData asked;
    asked.group = GroupAddress(static_cast<ControlGroupId>(reading.group));
    asked.toolNumber = static_cast<std::uint16_t>(reading.tool);
    if (coordinate == CoordinateType::UserCoordinate) {
        asked.coordinateSelector = static_cast<std::uint16_t>(reading.user + 1);
    } else {
        asked.coordinateSelector = coordinate == CoordinateType::RobotCoordinate ? 1 : 0;
    }
    std::vector<RequestKey> keys{Key(CommandNumber::UAPIPositionRead, 0, Selection(asked))};
    if (coordinate == CoordinateType::BaseCoordinate) {
        keys.push_back(Key(CommandNumber::RobotPositionRead, group + BaseCoordinateOffset));
    }
    return keys;
}

/// Each hundred of the instances is one kind of time: 10 is the total, then the robots, then the stations by their groups.
unsigned TimeInstance(RecordedReading const& reading) {
    constexpr unsigned Total = 10;
    constexpr unsigned Robot = 11;
    constexpr unsigned Applications = 300;
    unsigned const hundred = reading.index / 100 * 100;
    unsigned const kindOfTime = reading.index % 100;
    if (reading.index >= Applications) {
        return Applications + static_cast<unsigned>(reading.detail);
    }
    if (reading.index == 1 || kindOfTime == Total) {
        return reading.index;
    }
    return hundred + static_cast<unsigned>(reading.group) + (kindOfTime == Robot ? Total : 0);
}

std::vector<RequestKey> AlarmKeys() {
    std::vector<RequestKey> keys;
    for (unsigned place = 1; place <= recording::AlarmPlaces; ++place) {
        keys.push_back(Key(CommandNumber::AlarmDataRead, place));
    }
    return keys;
}

} // namespace

RequestKey KeyOf(Request const& request) {
    std::uint64_t detail = 0;
    if (request.Command() == CommandNumber::UAPIPositionRead) {
        detail = Selection(request.As<UAPIGetPositionSendData>());
        return Key(request.Command(), 0, detail);
    }
    if (request.Command() == CommandNumber::MotionTargetProgress) {
        return Key(request.Command(), 0, request.As<std::uint32_t>());
    }
    return Key(request.Command(), request.subHeader.instance);
}

std::vector<RequestKey> KeysOf(RecordedReading const& reading) {
    static std::map<std::string_view, CommandNumber> const ByIndex{
        {kind::ByteVariable, CommandNumber::ByteVariable},
        {kind::IntegerVariable, CommandNumber::IntegerVariable},
        {kind::DoubleIntVariable, CommandNumber::DoubleIntVariable},
        {kind::RealVariable, CommandNumber::RealVariable},
        {kind::StringVariable, CommandNumber::StringVariable},
        {kind::RobotPositionVariable, CommandNumber::RobotPositionVariable},
        {kind::BasePositionVariable, CommandNumber::BasePositionVariable},
        {kind::StationPositionVariable, CommandNumber::StationPositionVariable},
        {kind::Register, CommandNumber::RegisterData},
        {kind::Software, CommandNumber::SystemInformationRead},
    };
    if (auto const found = ByIndex.find(reading.kind); found != ByIndex.end()) {
        return {Key(found->second, reading.index)};
    }
    auto const group = static_cast<unsigned>(reading.group);
    if (reading.kind == kind::State) {
        return {Key(CommandNumber::StatusRead, 1)};
    }
    if (reading.kind == kind::Job) {
        return {Key(CommandNumber::ExecutingJobRead, reading.index + 1)};
    }
    if (reading.kind == kind::Alarms) {
        return AlarmKeys();
    }
    if (reading.kind == kind::Position) {
        return PositionKeys(reading);
    }
    if (reading.kind == kind::Torque || reading.kind == kind::PositionError) {
        return {
            Key(reading.kind == kind::Torque ? CommandNumber::TorqueRead : CommandNumber::PositionErrorRead, group)};
    }
    if (reading.kind == kind::Signal || reading.kind == kind::SignalGroup) {
        constexpr unsigned SignalsOfGroup = 10; // of which eight exist
        return {Key(CommandNumber::IOData, reading.index / SignalsOfGroup)};
    }
    if (reading.kind == kind::OperatingTime) {
        return {Key(CommandNumber::OperatingTimeRead, TimeInstance(reading))};
    }
    if (reading.kind == kind::TargetProgress) {
        return {Key(CommandNumber::MotionTargetProgress, 0, reading.index)};
    }
    return {};
}

} // namespace harvlink::simulator
