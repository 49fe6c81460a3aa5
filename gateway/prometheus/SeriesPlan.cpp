#include "gateway/prometheus/SeriesPlan.h"

#include <algorithm>
#include <array>
#include <set>

#include <fmt/format.h>

#include "recording/model/Kinds.h"
#include "words/text/Text.h"
#include "words/values/PositionText.h"

namespace harvlink::gateway {

namespace {

namespace kind = recording::kind;
using recording::RecordedReading;

/// The items of a state, see recording/model/Kinds.h.
constexpr std::size_t ModeItem = 0;
constexpr std::size_t CycleItem = 1;
constexpr std::array<std::string_view, 3> Modes{"teach", "play", "remote"};
constexpr std::array<std::string_view, 3> Cycles{"step", "cycle", "automatic"};

std::string GroupOf(RecordedReading const& reading) {
    return words::GroupName(static_cast<ControlGroupId>(reading.group));
}

std::string CoordinateOf(RecordedReading const& reading) {
    return words::CoordinateName({static_cast<CoordinateType>(reading.coordinate), reading.user});
}

/// The name of an axis: of a reading of one axis, its item has none.
std::string AxisOf(RecordedReading const& reading, std::size_t item) {
    if (reading.axis < 0) {
        return reading.items[item].field;
    }
    RecordedReading whole = reading;
    whole.axis = -1;
    recording::SetItems(whole);
    return whole.items.at(static_cast<std::size_t>(reading.axis)).field;
}

std::size_t AxisCount(RecordedReading const& reading) {
    return reading.axis >= 0 ? 1 : recording::position_item::Axes;
}

std::vector<Series> StateSeries() {
    return {{Metric::Running, {}, 2},
            {Metric::Hold, {}, 3},
            {Metric::Alarming, {}, 4},
            {Metric::Erroring, {}, 5},
            {Metric::ServoOn, {}, 6}};
}

std::vector<Series> JobSeries(RecordedReading const& reading) {
    Labels const task{{"task", std::to_string(reading.index)}};
    constexpr double Percent = 0.01;
    return {{Metric::JobLine, task, 1}, {Metric::JobStep, task, 2}, {Metric::JobSpeed, task, 3, Percent}};
}

std::vector<Series> PositionSeries(RecordedReading const& reading) {
    constexpr double Millimetre = 0.001;
    std::vector<Series> series;
    for (std::size_t item = 0; item < AxisCount(reading); ++item) {
        Labels labels{{"group", GroupOf(reading)}, {"axis", AxisOf(reading, item)}};
        std::string const& unit = reading.items[item].unit;
        if (unit == "pulse") {
            series.push_back({Metric::AxisPulses, std::move(labels), item});
            continue;
        }
        labels.emplace_back("coordinate", CoordinateOf(reading));
        labels.emplace_back("tool", std::to_string(reading.tool));
        bool const isLength = unit == "mm";
        series.push_back({isLength ? Metric::AxisMeters : Metric::AxisDegrees, std::move(labels), item,
                          isLength ? Millimetre : 1.0});
    }
    return series;
}

std::vector<Series> AxesSeries(RecordedReading const& reading, Metric metric) {
    std::vector<Series> series;
    for (std::size_t item = 0; item < AxisCount(reading); ++item) {
        series.push_back({metric, {{"group", GroupOf(reading)}, {"axis", AxisOf(reading, item)}}, item});
    }
    return series;
}

std::vector<Series> PositionVariableSeries(RecordedReading const& reading) {
    std::vector<Series> series;
    for (std::size_t item = 0; item < recording::position_item::Axes; ++item) {
        series.push_back(
            {Metric::VariableAxis, {{"variable", reading.name}, {"axis", std::to_string(item + 1)}}, item});
    }
    return series;
}

/// What tells it from others, after the words that all operating times have.
std::string TimeName(RecordedReading const& reading) {
    constexpr std::string_view Start = "time count ";
    return reading.name.substr(std::min(Start.size(), reading.name.size()));
}

std::vector<Series> AllSeries(RecordedReading const& reading) {
    std::string_view const what = reading.kind;
    std::string const index = std::to_string(reading.index);
    if (what == kind::State) {
        return StateSeries();
    }
    if (what == kind::Job) {
        return JobSeries(reading);
    }
    if (what == kind::Alarms) {
        return {{Metric::Alarms, {}, 0}};
    }
    if (what == kind::Position) {
        return PositionSeries(reading);
    }
    if (what == kind::Torque || what == kind::PositionError) {
        return AxesSeries(reading, what == kind::Torque ? Metric::AxisTorque : Metric::AxisErrorPulses);
    }
    if (what == kind::RobotPositionVariable || what == kind::BasePositionVariable ||
        what == kind::StationPositionVariable) {
        return PositionVariableSeries(reading);
    }
    if (what == kind::Signal || what == kind::SignalGroup) {
        return {{what == kind::Signal ? Metric::Signal : Metric::SignalGroup, {{"signal", index}}, 0}};
    }
    if (what == kind::Register) {
        return {{Metric::Register, {{"register", index}}, 0}};
    }
    if (what == kind::OperatingTime) {
        Labels const time{{"time", TimeName(reading)}};
        return {{Metric::OperatingStart, time, 0}, {Metric::OperatingTime, time, 1}};
    }
    if (what == kind::TargetProgress) {
        return {{Metric::TargetProgress, {{"slot", index}}, 0}};
    }
    bool const isText = what == kind::StringVariable || what == kind::Software;
    return isText ? std::vector<Series>() : std::vector<Series>{{Metric::Variable, {{"variable", reading.name}}, 0}};
}

std::string TextOf(recording::RecordedValue const& value) {
    if (auto const* const number = std::get_if<std::int64_t>(&value)) {
        return std::to_string(*number);
    }
    auto const* const text = std::get_if<std::string>(&value);
    return text == nullptr ? "" : *text;
}

std::string NameOf(std::array<std::string_view, 3> const& names, recording::RecordedValue const& value) {
    auto const* const number = std::get_if<std::int64_t>(&value);
    bool const isKnown = number != nullptr && *number >= 0 && static_cast<std::size_t>(*number) < names.size();
    return std::string(isKnown ? names.at(static_cast<std::size_t>(*number)) : "unknown");
}

std::vector<std::pair<Metric, Labels>> AlarmSeries(Sample const& sample) {
    std::vector<std::pair<Metric, Labels>> series;
    std::set<Labels> seen; // the same alarm may be active twice
    auto const* const count = std::get_if<std::int64_t>(&sample.values.at(0));
    for (std::size_t place = 0; place < recording::AlarmPlaces; ++place) {
        if (count == nullptr || static_cast<std::int64_t>(place) >= *count) {
            break;
        }
        std::size_t const first = 1 + place * recording::AlarmItems;
        Labels labels{{"code", TextOf(sample.values.at(first))}, {"subcode", TextOf(sample.values.at(first + 1))}};
        if (seen.insert(labels).second) {
            series.emplace_back(Metric::AlarmActive, std::move(labels));
        }
    }
    return series;
}

} // namespace

std::vector<std::vector<Series>> SeriesOf(Controller const& controller) {
    std::vector<std::vector<Series>> all;
    std::set<std::pair<Metric, Labels>> known;
    for (RecordedReading const& reading : controller.readings) {
        std::vector<Series> own;
        for (Series& series : AllSeries(reading)) {
            if (known.emplace(series.metric, series.labels).second) {
                own.push_back(std::move(series));
            }
        }
        all.push_back(std::move(own));
    }
    return all;
}

std::vector<std::pair<Metric, Labels>> ValueSeries(Sample const& sample) {
    RecordedReading const& reading = sample.controller->readings[sample.reading];
    if (reading.kind == kind::State) {
        return {{Metric::ControlMode, {{"mode", NameOf(Modes, sample.values.at(ModeItem))}}},
                {Metric::CycleMode, {{"cycle", NameOf(Cycles, sample.values.at(CycleItem))}}}};
    }
    if (reading.kind == kind::Job) {
        return {{Metric::JobInfo, {{"task", std::to_string(reading.index)}, {"job", TextOf(sample.values.at(0))}}}};
    }
    if (reading.kind == kind::Alarms) {
        return AlarmSeries(sample);
    }
    if (reading.kind == kind::Software) {
        return {{Metric::ControllerInfo,
                 {{"address", sample.controller->address},
                  {"software", TextOf(sample.values.at(0))},
                  {"model", TextOf(sample.values.at(1))}}}};
    }
    return {};
}

} // namespace harvlink::gateway
