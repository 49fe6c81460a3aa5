#include "recording/fleet/FleetAdapter.h"

#include <array>
#include <functional>
#include <sstream>

#include <fmt/format.h>

#include "recording/model/Kinds.h"
#include "words/cards/Explain.h"
#include "words/text/InputError.h"

namespace harvlink::recording {

namespace {

/// By FleetItemKind.
constexpr std::array Kinds{kind::State,
                           kind::Job,
                           kind::Alarms,
                           kind::Position,
                           kind::Torque,
                           kind::PositionError,
                           kind::ByteVariable,
                           kind::IntegerVariable,
                           kind::DoubleIntVariable,
                           kind::RealVariable,
                           kind::StringVariable,
                           kind::RobotPositionVariable,
                           kind::BasePositionVariable,
                           kind::StationPositionVariable,
                           kind::Signal,
                           kind::SignalGroup,
                           kind::Register,
                           kind::OperatingTime,
                           kind::Software,
                           kind::TargetProgress};

/// By FleetEventKind; the first is a change of the link, which has the name of the state that it changed to.
constexpr std::array EventKinds{"link",         "alarm-raised", "alarm-cleared", "servo-on",      "servo-off",
                                "mode",         "cycle-mode",   "job",           "model-changed", "software-changed",
                                "item-refused", "ran-over"};

/// By FleetState.
constexpr std::array LinkKinds{"connecting", "online", "late", "silent", "refused"};

std::string KindOf(FleetEvent const& event) {
    auto const state = static_cast<std::size_t>(event.after);
    bool const isLink = event.kind == FleetEventKind::StateChanged && state < LinkKinds.size();
    return isLink ? LinkKinds.at(state) : EventKinds.at(static_cast<std::size_t>(event.kind));
}

Microseconds MicrosecondsOf(std::chrono::system_clock::time_point time) {
    return std::chrono::duration_cast<std::chrono::microseconds>(time.time_since_epoch()).count();
}

/// A sample has the time of the system's clock alone. It is young, so that clock has hardly been set since.
Microseconds MonotonicOf(std::chrono::system_clock::time_point time) {
    using std::chrono::duration_cast;
    auto const age = std::chrono::system_clock::now() - time;
    auto const monotonic = std::chrono::steady_clock::now().time_since_epoch() - age;
    return duration_cast<std::chrono::microseconds>(monotonic).count();
}

std::int64_t Truth(bool value) {
    return value ? 1 : 0;
}

std::int64_t FigureNumber(Figure const& figure) {
    std::int64_t number = 0;
    unsigned bit = 0;
    auto const add = [&](auto field) { number |= Truth(static_cast<int>(field) != 0) << bit++; };
    add(figure.frontOrBack);
    add(figure.upperOrLower);
    add(figure.flipOrNoFlip);
    for (AxisAngle const angle : {figure.sAngle, figure.lAngle, figure.uAngle, figure.rAngle, figure.bAngle,
                                  figure.tAngle, figure.eAngle, figure.wAngle}) {
        add(angle);
    }
    return number;
}

/// A field of the wire ends at its first zero byte.
std::string UpToZero(std::string const& field) {
    return field.substr(0, field.find('\0'));
}

struct Values {
    using List = std::vector<RecordedValue>;

    List operator()(std::monostate /*none*/) const { return {}; }
    List operator()(bool value) const { return {Truth(value)}; }
    List operator()(std::int64_t value) const { return {value}; }
    List operator()(double value) const { return {value}; }
    List operator()(std::string const& value) const { return {UpToZero(value)}; }
    List operator()(ControllerStateData const& state) const {
        return {static_cast<std::int64_t>(state.controlMode),
                static_cast<std::int64_t>(state.cycleMode),
                Truth(state.isRunning),
                Truth(state.isProgramPendantHold),
                Truth(state.isAlarming),
                Truth(state.isErroring),
                Truth(state.isServoOn)};
    }
    List operator()(JobData const& job) const {
        return {UpToZero(job.name), std::int64_t{job.line}, std::int64_t{job.stepNumber}, job.speedOverride};
    }
    List operator()(ActiveAlarms const& alarms) const {
        List values{std::int64_t{alarms.numberOfAlarms}};
        for (AlarmData const& alarm : alarms.alarms) {
            values.insert(values.end(), {std::int64_t{alarm.code}, std::int64_t{alarm.subcode}, UpToZero(alarm.time),
                                         UpToZero(alarm.name)});
        }
        return values;
    }
    List operator()(PositionData const& position) const {
        List values(position.axes.begin(), position.axes.end());
        values.insert(values.end(),
                      {static_cast<std::int64_t>(position.coordinateType), std::int64_t{position.toolNumber},
                       std::int64_t{position.userCoordinateNumber}, FigureNumber(position.figure)});
        return values;
    }
    List operator()(TorqueData const& torque) const { return Axes(torque.axes); }
    List operator()(PositionErrorData const& error) const { return Axes(error.axes); }
    List operator()(TimeData const& time) const {
        constexpr std::int64_t Minute = 60;
        return {time.startTimeEpoch,
                (time.elapsedTime.hours * Minute + time.elapsedTime.minutes) * Minute + time.elapsedTime.seconds};
    }
    List operator()(SystemInfoData const& info) const {
        return {UpToZero(info.softwareVersion), UpToZero(info.modelName)};
    }

    static List Axes(std::array<std::int32_t, 8> const& axes) {
        List values;
        for (std::int32_t const axis : axes) {
            values.emplace_back(std::int64_t{axis});
        }
        return values;
    }
};

/// Cause and check of an alarm; empty if nothing is known of it.
std::string CardOf(std::int64_t alarm) {
    try {
        for (words::Explanation const& explanation : words::Explain(fmt::format("alarm:{}", alarm))) {
            if (explanation.match == words::ExactMatch && !explanation.advice.cause.empty()) {
                return fmt::format("{} {}", explanation.advice.cause, explanation.advice.check);
            }
        }
    } catch (words::InputError const&) {
        // not a number that alarms have
    }
    return {};
}

} // namespace

RecordedReading ReadingOf(FleetItem const& item) {
    std::ostringstream name;
    name << item;
    RecordedReading reading{.name = name.str(),
                            .kind = std::string(Kinds.at(static_cast<std::size_t>(item.kind))),
                            .index = item.index,
                            .group = static_cast<std::int32_t>(item.group),
                            .coordinate = static_cast<std::int32_t>(item.coordinate),
                            .tool = item.toolNumber,
                            .user = item.userCoordinateNumber,
                            .axis = item.axis,
                            .detail = item.detail,
                            .items = {}};
    SetItems(reading);
    return reading;
}

std::vector<RecordedValue> ValuesOf(FleetSample const& sample) {
    return std::visit(Values{}, sample.value);
}

RecordedMoment MomentOf(FleetSample const& sample) {
    return {static_cast<RecordedQuality>(sample.quality), sample.code, MicrosecondsOf(sample.requestTime),
            MicrosecondsOf(sample.answerTime), MonotonicOf(sample.answerTime)};
}

RecordedEvent EventOf(FleetEvent const& event) {
    bool const isAlarm = event.kind == FleetEventKind::AlarmRaised;
    return {.time = MicrosecondsOf(event.time),
            .monotonic = MonotonicOf(event.time),
            .kind = KindOf(event),
            .before = event.before,
            .after = event.after,
            .code = event.code,
            .text = UpToZero(event.text),
            .card = isAlarm && event.after != 0 ? CardOf(event.after) : std::string()};
}

void DecodeTexts(words::TextEncoding const& encoding, std::vector<RecordedValue>& values) {
    for (RecordedValue& value : values) {
        if (auto* const text = std::get_if<std::string>(&value); text != nullptr) {
            *text = encoding.Decode(*text);
        }
    }
}

void FleetAdapter::AddController(RecordedController const& controller) {
    controllers_.insert_or_assign(controller.name,
                                  Controller{ids_.addController(controller), words::TextEncoding(controller.encoding)});
}

FleetAdapter::Controller const& FleetAdapter::Find(std::string const& name) {
    if (!controllers_.contains(name)) {
        AddController({.name = name, .address = {}});
    }
    return controllers_.at(name);
}

RecordedSample FleetAdapter::Convert(FleetSample const& sample) {
    FleetItem const& item = sample.item;
    Controller const& controller = Find(sample.controller);
    auto const [found, isNew] =
        readings_.try_emplace(Key{controller.id, item.kind, item.index, item.group, item.coordinate, item.toolNumber,
                                  item.userCoordinateNumber, item.axis, item.detail});
    if (isNew) {
        RecordedReading reading = ReadingOf(item);
        reading.controller = controller.id;
        found->second = ids_.addReading(reading);
    }
    RecordedSample recorded{found->second, MomentOf(sample), {}};
    if (sample.quality == FleetQuality::Good) {
        recorded.values = ValuesOf(sample);
        DecodeTexts(controller.encoding, recorded.values);
    }
    return recorded;
}

RecordedEvent FleetAdapter::Convert(FleetEvent const& event) {
    Controller const& controller = Find(event.controller);
    RecordedEvent recorded = EventOf(event);
    recorded.controller = controller.id;
    recorded.text = controller.encoding.Decode(recorded.text);
    return recorded;
}

} // namespace harvlink::recording
