#include "cli/watch/SampleJson.h"

#include <fmt/chrono.h>

#include "cli/output/Words.h"
#include "words/text/Encoding.h"
#include "words/text/Text.h"
#include "words/values/StateText.h"

namespace harvlink::cli::watch {

std::string TimeText(Sample::Time time) {
    auto const milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()) % 1000;
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}Z", fmt::gmtime(std::chrono::system_clock::to_time_t(time)),
                       milliseconds.count());
}

Json JobJson(JobData const& job) {
    return {{"name", ControllerText(job.name)},
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

namespace {

/// Makes JSON of readings and collects the failures among them.
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

template <typename Number>
std::vector<Number> AxesOf(GroupSample const& group, GroupSample::Axes const& values) {
    std::size_t const count = group.axes.empty() ? values.size() : group.axes.size();
    std::vector<Number> axes;
    for (std::size_t axis = 0; axis < count; ++axis) {
        axes.push_back(static_cast<Number>(values.at(axis)));
    }
    return axes;
}

Json GroupJson(GroupSample const& group, Writer& writer) {
    auto const whole = [&](GroupSample::Axes const& values) { return Json(AxesOf<std::int64_t>(group, values)); };
    auto const decimal = [&](GroupSample::Axes const& values) { return Json(AxesOf<double>(group, values)); };
    return {{"group", group.name},
            {"axes", group.axes},
            {"pulses", writer.Of(group.name + " pulses", group.pulses, whole)},
            {"base", group.base ? writer.Of(group.name + " base", *group.base, decimal) : Json()},
            {"torque", writer.Of(group.name + " torque", group.torque, whole)}};
}

void AddValues(Json& document, Sample const& sample, Writer& writer) {
    document["state"] = writer.Of("state", sample.state, StateJson);
    document["job"] = writer.Of("job", sample.job, JobJson);
    document["alarms"] = writer.Of("alarms", sample.alarms, AlarmsJson);
    for (GroupSample const& group : sample.groups) {
        document["groups"].push_back(GroupJson(group, writer));
    }
    for (VariableSample const& variable : sample.variables) {
        document["variables"][variable.name] = writer.Of(variable.name, variable.value, VariableValueJson);
    }
    for (SignalSample const& signal : sample.signals) {
        document["signals"][signal.name] = writer.Of(signal.name, signal.on, [](bool on) { return Json(on); });
    }
}

} // namespace

Json SampleJson(Sample const& sample) {
    Writer writer;
    Json document{{"time", TimeText(sample.lost ? std::chrono::system_clock::now() : sample.time)},
                  {"host", sample.host},
                  {"model", sample.model},
                  {"software", sample.software},
                  {"duration_ms", RoundToMilli(sample.duration.count())},
                  {"answered", !sample.lost},
                  {"state", nullptr},
                  {"job", nullptr},
                  {"alarms", nullptr},
                  {"groups", Json::array()},
                  {"variables", Json::object()},
                  {"signals", Json::object()}};
    if (sample.lost) {
        writer.Note("controller", *sample.lost);
    } else {
        AddValues(document, sample, writer);
    }
    document["problems"] = writer.problems();
    return document;
}

} // namespace harvlink::cli::watch
