#include "fleet/Record.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "fleet/ItemRequest.h"
#include "wire/HelperFunction.h"

namespace harvlink::fleet {
namespace {

static_assert(sizeof(FaultMessages::AlarmDataMsg) == AlarmRecordSize);

constexpr std::size_t extrasOfPosition =
    2; ///< behind the payload: number of axes, whether the extended request read it

/// The public record that the answer to a request becomes.
template <typename R>
struct OutputOf;
// clang-format off
template <> struct OutputOf<StateRequest> { using Type = ControllerStateData; };
template <> struct OutputOf<ExecutingJobRequest> { using Type = JobData; };
template <> struct OutputOf<AlarmRequest> { using Type = AlarmData; };
template <> struct OutputOf<RobotPositionRequest> { using Type = PositionData; };
template <> struct OutputOf<ExtendedPositionRequest> { using Type = PositionData; };
template <> struct OutputOf<TorqueRequest> { using Type = TorqueData; };
template <> struct OutputOf<PositionErrorRequest> { using Type = PositionErrorData; };
template <typename Value> struct OutputOf<ScalarRead<Value>> { using Type = ScalarVariableData<Value>; };
template <> struct OutputOf<StringRead> { using Type = StringVariableData; };
template <> struct OutputOf<RobotPositionVariableRead> { using Type = RobotPositionVariableData; };
template <> struct OutputOf<BasePositionVariableRead> { using Type = BaseAxisPositionVariableData; };
template <> struct OutputOf<StationPositionVariableRead> { using Type = StationPositionVariableData; };
template <> struct OutputOf<SignalGroupRead> { using Type = unsigned char; };
template <> struct OutputOf<RegisterRead> { using Type = unsigned short; };
template <> struct OutputOf<OperatingTimeRequest> { using Type = TimeData; };
template <> struct OutputOf<SystemInformationRequest> { using Type = SystemInfoData; };
template <> struct OutputOf<TargetProgressRequest> { using Type = double; };
// clang-format on

/// The alternative of FleetValue for a public record.
template <typename Output>
FleetValue ValueOf(Output&& output) {
    using Plain = std::remove_cvref_t<Output>;
    if constexpr (requires { output.positionData; }) {
        return output.positionData;
        // cppcheck-suppress identicalConditionAfterEarlyExit // it compares the word requires alone
    } else if constexpr (requires { output.variableIndex; }) {
        return ValueOf(std::move(output.value));
    } else if constexpr (std::is_integral_v<Plain>) {
        return std::int64_t{output};
    } else if constexpr (std::is_floating_point_v<Plain>) {
        return double{output};
    } else if constexpr (std::is_same_v<Plain, AlarmData>) {
        return {}; // only as a part of all places
    } else {
        return std::forward<Output>(output);
    }
}

/// What decides by which request a position was read is kept in its record.
ControllerFacts FactsOf(bool isExtended) {
    ControllerFacts facts;
    facts.generation = isExtended ? ControllerVersion::VersionYA : ControllerVersion::VersionDS;
    return facts;
}

template <typename R>
typename OutputOf<R>::Type Decode(R const& request, StatusInfo& status, std::span<std::byte const> payload) {
    ReplyTo<R> reply;
    auto const size = std::min(payload.size(), sizeof(reply.payload));
    std::ranges::copy(payload.first(size), reply.Bytes().begin() + HeaderSize);
    reply.header.payloadSize = static_cast<std::uint16_t>(size);
    typename OutputOf<R>::Type output{};
    status = request.Decode(std::move(status), reply, output);
    return output;
}

bool IsAxis(Item const& item) {
    return item.axis >= 0;
}

ActiveAlarms DecodeAlarms(std::span<std::byte const> record) {
    ActiveAlarms alarms;
    for (auto& alarm : alarms.alarms) {
        StatusInfo status;
        alarm = Decode(AlarmRequest{}, status, record.first(AlarmRecordSize));
        alarms.numberOfAlarms += alarm.code != 0 ? 1 : 0;
        record = record.subspan(AlarmRecordSize);
    }
    return alarms;
}

PositionData DecodePosition(Item const& item, std::span<std::byte const> record) {
    auto const payload = record.first(record.size() - extrasOfPosition);
    auto const extras = record.last(extrasOfPosition);
    StatusInfo status;
    PositionData position = WithPosition(item, FactsOf(extras[1] != std::byte{}),
                                         [&](auto const& request) { return Decode(request, status, payload); });
    (void)FinishPosition(std::move(status), item.Coordinate(), std::to_integer<std::uint32_t>(extras[0]), position);
    return position;
}

template <typename Value>
std::size_t Put(Value const& value, std::span<std::byte> record) {
    std::memcpy(record.data(), &value, sizeof(value));
    return sizeof(value);
}

template <typename Value>
Value Get(std::span<std::byte const> record) {
    Value value{};
    std::memcpy(&value, record.data(), std::min(record.size(), sizeof(value)));
    return value;
}

std::size_t Copy(std::span<std::byte const> payload, std::size_t size, std::span<std::byte> record) {
    std::size_t const length = std::min({payload.size(), size, record.size()});
    std::ranges::copy(payload.first(length), record.begin());
    return length;
}

std::size_t MakePositionRecord(Item const& item, ControllerFacts const& facts, std::span<std::byte const> payload,
                               std::span<std::byte> record) {
    std::array<std::byte, sizeof(RobotPositionMsg) + extrasOfPosition> whole{};
    bool const isExtended = !IsReadByRobotPosition(item.Coordinate(), facts.generation);
    std::size_t const size = isExtended ? sizeof(UAPIGetPositionRecvData) : sizeof(RobotPositionMsg);
    Copy(payload, size, whole);
    whole.at(size) = std::byte{facts.AxesOf(item.ControlGroup())};
    whole.at(size + 1) = std::byte{isExtended ? std::uint8_t{1} : std::uint8_t{0}};
    auto const used = std::span(whole).first(size + extrasOfPosition);
    if (!IsAxis(item)) {
        return Copy(used, used.size(), record);
    }
    return Put(DecodePosition(item, used).axes.at(static_cast<std::size_t>(item.axis)), record);
}

FleetValue ReadAxis(Item const& item, std::span<std::byte const> record) {
    if (item.Kind() == FleetItemKind::Position) {
        return Get<double>(record);
    }
    return std::int64_t{Get<std::int32_t>(record)};
}

FleetValue ReadByRequest(Item const& item, std::span<std::byte const> record, StatusInfo& status) {
    return WithRequest(item, 0, FactsOf(false),
                       [&](auto const& request) { return ValueOf(Decode(request, status, record)); });
}

FleetValue ReadValue(Item const& item, std::span<std::byte const> record, StatusInfo& status) {
    if (IsAxis(item)) {
        return ReadAxis(item, record);
    }
    switch (item.Kind()) {
    case FleetItemKind::Alarms:
        return DecodeAlarms(record);
    case FleetItemKind::Position:
        return DecodePosition(item, record);
    case FleetItemKind::Signal:
        return record[0] != std::byte{};
    default:
        return ReadByRequest(item, record, status);
    }
}

std::size_t SizeOfReply(Item const& item) {
    return WithRequest(item, 0, FactsOf(false), [](auto const& request) {
        return sizeof(typename std::remove_cvref_t<decltype(request)>::Reply);
    });
}

} // namespace

std::size_t RoomForRecord(Item const& item) {
    if (IsAxis(item)) {
        return sizeof(double);
    }
    switch (item.Kind()) {
    case FleetItemKind::Alarms:
        return LargestRecord;
    case FleetItemKind::Position:
        return sizeof(RobotPositionMsg) + extrasOfPosition;
    default:
        return SizeOfReply(item);
    }
}

std::size_t MakeRecord(Item const& item, unsigned part, ControllerFacts const& facts,
                       std::span<std::byte const> payload, std::span<std::byte> record) {
    switch (item.Kind()) {
    case FleetItemKind::Alarms:
        return Copy(payload, AlarmRecordSize, record.subspan(part * AlarmRecordSize));
    case FleetItemKind::Position:
        return MakePositionRecord(item, facts, payload, record);
    case FleetItemKind::Signal: {
        auto const group = std::to_integer<unsigned>(payload[0]);
        return Put(static_cast<std::uint8_t>((group >> item.index % 10) & 1U), record);
    }
    case FleetItemKind::Torque:
    case FleetItemKind::PositionError:
        if (IsAxis(item)) {
            auto const axes = Get<WireAxes>(payload);
            return Put(axes.at(static_cast<std::size_t>(item.axis)), record);
        }
        break;
    default:
        break;
    }
    return Copy(payload, RoomForRecord(item), record);
}

Reading ReadRecord(Item const& item, std::span<std::byte const> record) {
    StatusInfo status;
    Reading reading;
    try {
        reading.value = ReadValue(item, record, status);
    } catch (std::logic_error const&) { // of an operating time that is none
        status.StatusCode = static_cast<std::int32_t>(ErrorStatusCodes::UnreadableTime);
    }
    reading.code = status.StatusCode;
    if (reading.code != 0) {
        reading.value = {};
    }
    return reading;
}

std::int32_t RefusalCode(Item const& item, std::int32_t code) {
    if (code == 0) { // without a refusal a request would read the record, and there is none
        return 0;
    }
    StatusInfo status = StatusInformation(code);
    if (item.Kind() == FleetItemKind::Position) {
        ApplyControlGroupTable(status);
    } else {
        (void)ReadByRequest(item, {}, status);
    }
    return status.StatusCode;
}

std::int32_t RefusalByGeneration(Item const& item, ControllerVersion generation) {
    auto code = ErrorStatusCodes::Ok;
    bool const isOld =
        generation < ControllerVersion::VersionYA; // signed: an unknown generation counts as an older one
    if (item.Kind() == FleetItemKind::Position && isOld) {
        if (item.toolNumber != 0) {
            code = ErrorStatusCodes::ActiveToolOnly;
        } else if (!RobotPositionRequest::Serves(item.Coordinate())) {
            code = ErrorStatusCodes::InvalidCoordinateType;
        }
    } else if (item.Kind() == FleetItemKind::TargetProgress && !HelperFunction::CheckUAPICompatible(generation)) {
        code = ErrorStatusCodes::UnsupportedOnThisController;
    }
    return static_cast<std::int32_t>(code);
}

} // namespace harvlink::fleet
