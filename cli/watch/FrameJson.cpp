#include "cli/watch/FrameJson.h"

#include <fmt/chrono.h>

#include "cli/output/Words.h"
#include "words/text/Text.h"
#include "words/values/StateText.h"

namespace harvlink::cli::watch {

namespace {

std::string TimeText(Frame::Time time) {
    auto const milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()) % 1000;
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}Z", fmt::gmtime(std::chrono::system_clock::to_time_t(time)),
                       milliseconds.count());
}

/// Makes JSON of readings and keeps what was wrong with them.
class Writer {
public:
    void Note(std::string const& what, StatusInfo const& status) {
        problems_.push_back({{"what", what}, {"code", status.StatusCode}, {"message", status.Message}});
    }

    template <typename Value, typename ToJson>
    Json Of(std::string const& what, Reading<Value> const& reading, ToJson const& toJson) {
        if (reading.IsValid()) {
            return toJson(reading.value);
        }
        Note(what, reading.status);
        return nullptr;
    }

    Json const& problems() const { return problems_; }

private:
    Json problems_ = Json::array();
};

Json JobJson(JobData const& job) {
    return {{"name", TrimField(job.name)},
            {"line", job.line},
            {"step", job.stepNumber},
            {"speed_override_percent", job.speedOverride}};
}

Json AlarmsJson(ActiveAlarms const& alarms) {
    Json rows = Json::array();
    for (AlarmData const& alarm : alarms.alarms) {
        if (alarm.code != 0) {
            rows.push_back(AlarmJson(alarm));
        }
    }
    return rows;
}

template <typename Number>
std::vector<Number> AxesOf(GroupFrame const& group, GroupFrame::Axes const& values) {
    std::size_t const count = group.axes.empty() ? values.size() : group.axes.size();
    std::vector<Number> axes;
    for (std::size_t axis = 0; axis < count; ++axis) {
        axes.push_back(static_cast<Number>(values.at(axis)));
    }
    return axes;
}

Json GroupJson(GroupFrame const& group, Writer& writer) {
    auto const whole = [&](GroupFrame::Axes const& values) { return Json(AxesOf<std::int64_t>(group, values)); };
    auto const decimal = [&](GroupFrame::Axes const& values) { return Json(AxesOf<double>(group, values)); };
    return {{"group", group.name},
            {"axes", group.axes},
            {"pulses", writer.Of(group.name + " pulses", group.pulses, whole)},
            {"base", group.base ? writer.Of(group.name + " base", *group.base, decimal) : Json()},
            {"torque", writer.Of(group.name + " torque", group.torque, whole)}};
}

void AddValues(Json& document, Frame const& frame, Writer& writer) {
    document["state"] = writer.Of("state", frame.state, StateJson);
    document["job"] = writer.Of("job", frame.job, JobJson);
    document["alarms"] = writer.Of("alarms", frame.alarms, AlarmsJson);
    for (GroupFrame const& group : frame.groups) {
        document["groups"].push_back(GroupJson(group, writer));
    }
    for (VariableFrame const& variable : frame.variables) {
        document["variables"][variable.name] = writer.Of(variable.name, variable.value, VariableValueJson);
    }
    for (SignalFrame const& signal : frame.signals) {
        document["signals"][signal.name] = writer.Of(signal.name, signal.on, [](bool on) { return Json(on); });
    }
}

} // namespace

Json FrameJson(Frame const& frame) {
    Writer writer;
    Json document{{"time", TimeText(frame.lost ? std::chrono::system_clock::now() : frame.time)},
                  {"host", frame.host},
                  {"model", frame.model},
                  {"software", frame.software},
                  {"duration_ms", RoundToMilli(frame.duration.count())},
                  {"answered", !frame.lost},
                  {"state", nullptr},
                  {"job", nullptr},
                  {"alarms", nullptr},
                  {"groups", Json::array()},
                  {"variables", Json::object()},
                  {"signals", Json::object()}};
    if (frame.lost) {
        writer.Note("controller", *frame.lost);
    } else {
        AddValues(document, frame, writer);
    }
    document["problems"] = writer.problems();
    return document;
}

} // namespace harvlink::cli::watch
