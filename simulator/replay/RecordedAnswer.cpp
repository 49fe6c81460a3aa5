#include "simulator/replay/RecordedAnswer.h"

#include <cmath>
#include <limits>
#include <string>

#include <fmt/format.h>

#include "controller/ControlGroupMessages.h"
#include "controller/FaultMessages.h"
#include "controller/JobMessages.h"
#include "controller/StatusMessages.h"
#include "position/AxisScaling.h"
#include "position/RobotPosition.h"
#include "recording/model/Kinds.h"
#include "simulator/model/FixedText.h"
#include "wire/SystemInfoMessage.h"

namespace harvlink::simulator {

namespace {

namespace item = recording::position_item;
using recording::RecordedSample;

double RealAt(RecordedSample const& sample, std::size_t place) {
    if (place >= sample.values.size()) {
        return 0.0;
    }
    if (auto const* const real = std::get_if<double>(&sample.values[place])) {
        return *real;
    }
    auto const* const integer = std::get_if<std::int64_t>(&sample.values[place]);
    return integer == nullptr ? 0.0 : static_cast<double>(*integer);
}

template <typename Number>
Number IntegerAt(RecordedSample const& sample, std::size_t place) {
    auto const* const integer =
        place < sample.values.size() ? std::get_if<std::int64_t>(&sample.values[place]) : nullptr;
    return integer == nullptr ? Number{} : static_cast<Number>(*integer);
}

std::string TextAt(RecordedSample const& sample, std::size_t place) {
    auto const* const text = place < sample.values.size() ? std::get_if<std::string>(&sample.values[place]) : nullptr;
    return text == nullptr ? std::string() : *text;
}

/// In the order in which a recording has them, the first the lowest bit.
Figure FigureOf(std::uint32_t number) {
    Figure figure;
    unsigned bit = 0;
    auto const take = [&](auto& field) { field = static_cast<std::decay_t<decltype(field)>>((number >> bit++) & 1U); };
    take(figure.frontOrBack);
    take(figure.upperOrLower);
    take(figure.flipOrNoFlip);
    for (AxisAngle* const angle : {&figure.sAngle, &figure.lAngle, &figure.uAngle, &figure.rAngle, &figure.bAngle,
                                   &figure.tAngle, &figure.eAngle, &figure.wAngle}) {
        take(*angle);
    }
    return figure;
}

PositionData PositionOf(std::span<RecordedAnswer const> answers) {
    PositionData position;
    for (auto const& [reading, sample] : answers) {
        if (reading->axis >= 0) {
            position.axes.at(static_cast<std::size_t>(reading->axis) % item::Axes) = RealAt(*sample, 0);
            position.coordinateType = static_cast<CoordinateType>(reading->coordinate);
            position.toolNumber = reading->tool;
            position.userCoordinateNumber = reading->user;
            continue;
        }
        for (std::size_t axis = 0; axis < item::Axes; ++axis) {
            position.axes.at(axis) = RealAt(*sample, axis);
        }
        position.coordinateType = static_cast<CoordinateType>(IntegerAt<std::int32_t>(*sample, item::Coordinate));
        position.toolNumber = IntegerAt<std::int32_t>(*sample, item::Tool);
        position.userCoordinateNumber = IntegerAt<std::int32_t>(*sample, item::User);
        position.figure = FigureOf(IntegerAt<std::uint32_t>(*sample, item::Figure));
    }
    return position;
}

UAPIPositionData SelectedPositionOf(std::span<RecordedAnswer const> answers) {
    PositionData position = PositionOf(answers);
    if (position.coordinateType == CoordinateType::UserCoordinate && position.userCoordinateNumber > 0) {
        --position.userCoordinateNumber; // counted from 0 here, unlike everywhere else
    }
    return {position, false};
}

WireAxes AxesOf(std::span<RecordedAnswer const> answers) {
    WireAxes axes{};
    for (auto const& [reading, sample] : answers) {
        for (std::size_t axis = 0; axis < axes.size(); ++axis) {
            if (reading->axis < 0) {
                axes.at(axis) = IntegerAt<std::int32_t>(*sample, axis);
            } else if (static_cast<std::size_t>(reading->axis) == axis) {
                axes.at(axis) = IntegerAt<std::int32_t>(*sample, 0);
            }
        }
    }
    return axes;
}

std::uint32_t Bit(unsigned position, bool value) {
    return value ? 1U << position : 0U;
}

void SetState(Request const& request, RecordedSample const& sample, Reply& reply) {
    auto const mode = IntegerAt<int>(sample, 0);
    auto const cycle = IntegerAt<int>(sample, 1);
    auto const has = [&](std::size_t place) { return IntegerAt<int>(sample, place) != 0; };
    std::uint32_t const first = Bit(0, cycle == 0) | Bit(1, cycle == 1) | Bit(2, cycle == 2) | Bit(3, has(2)) |
                                Bit(5, mode == 0) | Bit(6, mode == 1) | Bit(7, mode == 2);
    // Which hold it was, a recording does not say.
    std::uint32_t const second = Bit(1, has(3)) | Bit(4, has(4)) | Bit(5, has(5)) | Bit(6, has(6));
    if (request.subHeader.service == ServiceReadOne) {
        reply.Set(CheckControlModeReturnData{first});
    } else {
        reply.Set(StatusInformationReturnData{first, second});
    }
}

JobMsg JobOf(RecordedSample const& sample) {
    JobMsg message;
    FillText(message.jobName, TextAt(sample, 0));
    message.line = IntegerAt<std::uint32_t>(sample, 1);
    message.stepNumber = IntegerAt<std::uint32_t>(sample, 2);
    constexpr double PartsOfPerCent = 100.0;
    message.speedOverride = static_cast<std::uint32_t>(std::llround(RealAt(sample, 3) * PartsOfPerCent));
    return message;
}

FaultMessages::AlarmDataMsg AlarmOf(RecordedSample const& sample, unsigned place) {
    FaultMessages::AlarmDataMsg message;
    std::size_t const first = 1 + (place - 1) * recording::AlarmItems;
    message.code = IntegerAt<std::uint32_t>(sample, first);
    message.subcode = IntegerAt<std::uint32_t>(sample, first + 1);
    FillText(message.time, TextAt(sample, first + 2));
    FillText(message.name, TextAt(sample, first + 3));
    return message;
}

TimeReturnMsg TimeOf(RecordedSample const& sample) {
    TimeReturnMsg message;
    FillText(message.startTime, CalendarText(IntegerAt<std::time_t>(sample, 0)));
    auto const seconds = IntegerAt<std::uint64_t>(sample, 1);
    FillText(message.elapsedTime,
             fmt::format("{:06}:{:02}'{:02}", seconds / 3600 % 1'000'000, seconds / 60 % 60, seconds % 60));
    return message;
}

std::uint8_t SignalsOf(std::span<RecordedAnswer const> answers) {
    std::uint8_t group = 0;
    for (auto const& [reading, sample] : answers) {
        auto const value = IntegerAt<std::uint8_t>(*sample, 0);
        if (reading->kind == recording::kind::SignalGroup) {
            return value;
        }
        group = static_cast<std::uint8_t>(group | Bit(reading->index % 10, value != 0));
    }
    return group;
}

template <typename Message>
Message AxisVariableOf(std::span<RecordedAnswer const> answers, AxisScaling const& scaling) {
    PositionData const position = PositionOf(answers);
    Message message;
    message.coordinateType = static_cast<std::uint32_t>(position.coordinateType);
    message.axes = (position.coordinateType == CoordinateType::Pulse ? PulseScaling : scaling).ToWire(position.axes);
    return message;
}

SystemInfoReturnMsg SoftwareOf(RecordedSample const& sample) {
    SystemInfoReturnMsg message;
    FillText(message.softwareVersion, TextAt(sample, 0));
    FillText(message.modelName, TextAt(sample, 1));
    return message;
}

void SetText(RecordedSample const& sample, Reply& reply) {
    std::string const text = TextAt(sample, 0);
    reply.SetBytes(std::as_bytes(std::span(text)));
}

} // namespace

void SetPayload(Request const& request, std::span<RecordedAnswer const> answers, Reply& reply) {
    RecordedSample const& first = *answers.front().sample;
    switch (request.Command()) {
    case CommandNumber::StatusRead:
        return SetState(request, first, reply);
    case CommandNumber::ExecutingJobRead:
        return reply.Set(JobOf(first));
    case CommandNumber::AlarmDataRead:
        return reply.Set(AlarmOf(first, request.subHeader.instance));
    case CommandNumber::RobotPositionRead:
    case CommandNumber::RobotPositionVariable:
        return reply.Set(ToRobotPositionMsg(PositionOf(answers)));
    case CommandNumber::UAPIPositionRead:
        return reply.Set(SelectedPositionOf(answers));
    case CommandNumber::TorqueRead:
    case CommandNumber::PositionErrorRead:
        return reply.Set(AxesOf(answers));
    case CommandNumber::ByteVariable:
        return reply.Set(IntegerAt<std::uint8_t>(first, 0));
    case CommandNumber::IntegerVariable:
        return reply.Set(IntegerAt<std::int16_t>(first, 0));
    case CommandNumber::DoubleIntVariable:
        return reply.Set(IntegerAt<std::int32_t>(first, 0));
    case CommandNumber::RealVariable:
        return reply.Set(static_cast<float>(RealAt(first, 0)));
    case CommandNumber::StringVariable:
        return SetText(first, reply);
    case CommandNumber::BasePositionVariable:
        return reply.Set(AxisVariableOf<BasePositionVariableMsg>(answers, BaseAxisScaling));
    case CommandNumber::StationPositionVariable:
        return reply.Set(AxisVariableOf<StationPositionVariableMsg>(answers, PulseScaling));
    case CommandNumber::RegisterData:
        return reply.Set(IntegerAt<std::uint16_t>(first, 0));
    case CommandNumber::IOData:
        return reply.Set(SignalsOf(answers));
    case CommandNumber::OperatingTimeRead:
        return reply.Set(TimeOf(first));
    case CommandNumber::SystemInformationRead:
        return reply.Set(SoftwareOf(first));
    case CommandNumber::MotionTargetProgress:
        return reply.Set(RealAt(first, 0));
    default:
        reply.Refuse(Refusal::UndefinedCommand);
    }
}

} // namespace harvlink::simulator
