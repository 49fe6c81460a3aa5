#include "cli/watch/Layout.h"

#include <algorithm>
#include <cstddef>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "cli/output/Words.h"
#include "cli/watch/GroupLines.h"
#include "cli/watch/LineMaker.h"
#include "words/text/Encoding.h"
#include "words/text/Printable.h"
#include "words/values/StateText.h"

namespace harvlink::cli::watch {

namespace {

constexpr char const* OnlyReads = "watch only reads and writes nothing to the controller";

void Append(std::vector<Line>& lines, std::vector<Line> const& more) {
    lines.insert(lines.end(), more.begin(), more.end());
}

Line TitleLine(Sample const& sample, std::size_t columns) {
    Line line{
        {fmt::format("{}  {}  {}", sample.host, Printable(sample.model), Printable(sample.software)), Style::Title}};
    std::string const clock = fmt::format("{}  {:.1f} ms",
                                          sample.lost          ? "no answer"
                                          : sample.number == 0 ? "connecting"
                                                               : ClockText(sample.time),
                                          sample.duration.count());
    std::size_t const used = WidthOf(line) + clock.size();
    line.push_back({std::string(used < columns ? columns - used : 2, ' ')});
    line.push_back({clock, Style::Faint});
    return line;
}

std::vector<Line> LostLines(Sample const& sample) {
    if (!sample.lost) {
        return {};
    }
    std::string const age = sample.time == Sample::Time{} ? "nothing was read yet"
                                                          : "the values below were read at " + ClockText(sample.time);
    return {{{fmt::format("NO ANSWER since {}. Asking again; {}.", ClockText(sample.lostSince), age), Style::Bad}},
            {FailureSpan(*sample.lost)}};
}

Line FlagItem(std::string_view name, bool isOn, Style onStyle) {
    return {{fmt::format("{} ", name), Style::Faint}, {isOn ? "yes" : "no", isOn ? onStyle : Style::Normal}};
}

std::vector<Line> StateLines(Reading<ControllerStateData> const& state, std::size_t columns) {
    if (!state.IsValid()) {
        return Flow("State", {{FailureSpan(state.status)}}, columns);
    }
    Json const texts = StateJson(state.value);
    bool const isServoOn = state.value.isServoOn;
    return Flow("State",
                {{{"mode ", Style::Faint}, {texts["mode"].get<std::string>()}},
                 {{"cycle ", Style::Faint}, {texts["cycle"].get<std::string>()}},
                 {{"servo ", Style::Faint}, {isServoOn ? "on" : "off", isServoOn ? Style::Good : Style::Normal}},
                 FlagItem("running", state.value.isRunning, Style::Good),
                 FlagItem("hold", state.value.isProgramPendantHold, Style::Warning),
                 FlagItem("alarm", state.value.isAlarming, Style::Bad),
                 FlagItem("error", state.value.isErroring, Style::Bad)},
                columns);
}

Line JobItem(Reading<JobData> const& job) {
    if (!job.IsValid()) {
        return {FailureSpan(job.status)};
    }
    std::string const name = Printable(ControllerText(job.value.name));
    return {{name.empty() ? "none"
                          : fmt::format("{} line {} step {} speed {} %", name, job.value.line, job.value.stepNumber,
                                        job.value.speedOverride)}};
}

std::vector<Line> AlarmLines(Reading<ActiveAlarms> const& alarms, std::size_t columns) {
    std::vector<Line> items;
    if (!alarms.IsValid()) {
        items.push_back({FailureSpan(alarms.status)});
    }
    for (AlarmData const& alarm : alarms.value.alarms) {
        if (alarm.code != 0) {
            items.push_back({{fmt::format("{}-{} {}  {}", alarm.code, alarm.subcode,
                                          Printable(ControllerText(alarm.name)), Printable(ControllerText(alarm.time))),
                              Style::Bad}});
        }
    }
    if (items.empty()) {
        items.push_back({{"none"}});
    }
    return Flow("Alarms", items, columns);
}

Line VariableItem(VariableSample const& variable) {
    return {{variable.name + " ", Style::Faint},
            variable.value.IsValid() ? Span{Printable(FormatVariableValue(variable.value.value))}
                                     : FailureSpan(variable.value.status)};
}

Line SignalItem(SignalSample const& signal) {
    Span const state = signal.on.value ? Span{"on", Style::Good} : Span{"off"};
    return {{signal.name + " ", Style::Faint}, signal.on.IsValid() ? state : FailureSpan(signal.on.status)};
}

template <typename Parts, typename Item>
std::vector<Line> Items(Parts const& parts, Item const& item) {
    std::vector<Line> items;
    std::transform(parts.begin(), parts.end(), std::back_inserter(items), item);
    return items;
}

// A wide screen has several groups side by side.
std::vector<Line> GroupRows(std::vector<GroupSample> const& groups, std::size_t columns) {
    constexpr std::size_t Narrowest = 78; // eight axes
    constexpr std::size_t Gap = 3;
    std::size_t const perRow =
        std::clamp<std::size_t>(columns / (Narrowest + Gap), 1, std::max<std::size_t>(groups.size(), 1));
    std::size_t const width = columns / perRow - (perRow > 1 ? Gap : 0);
    std::vector<Line> lines;
    for (std::size_t first = 0; first < groups.size(); first += perRow) {
        lines.emplace_back();
        std::size_t const top = lines.size();
        for (std::size_t i = 0; i < perRow && first + i < groups.size(); ++i) {
            std::vector<Line> const block = GroupLines(groups[first + i], width);
            lines.resize(std::max(lines.size(), top + block.size()));
            for (std::size_t row = 0; row < block.size(); ++row) {
                Line& line = lines[top + row];
                std::size_t const left = i * (width + Gap);
                std::size_t const used = WidthOf(line);
                line.push_back({std::string(left > used ? left - used : 0, ' ')});
                Line const part = Clip(block[row], width);
                line.insert(line.end(), part.begin(), part.end());
            }
        }
    }
    return lines;
}

std::vector<Line> Body(Sample const& sample, std::size_t columns) {
    std::vector<Line> lines{TitleLine(sample, columns)};
    Append(lines, LostLines(sample));
    if (sample.time == Sample::Time{}) {
        return lines;
    }
    Append(lines, StateLines(sample.state, columns));
    Append(lines, Flow("Job", {JobItem(sample.job)}, columns));
    Append(lines, AlarmLines(sample.alarms, columns));
    Append(lines, GroupRows(sample.groups, columns));
    if (!sample.variables.empty() || !sample.signals.empty()) {
        lines.emplace_back();
    }
    Append(lines, Flow("Values", Items(sample.variables, VariableItem), columns));
    Append(lines, Flow("Signals", Items(sample.signals, SignalItem), columns));
    return lines;
}

} // namespace

std::vector<Line> LayOut(Sample const& sample, Size size, std::size_t& scrolled, std::string_view keys) {
    if (size.rows == 0 || size.columns == 0) {
        return {};
    }
    std::vector<Line> lines = Body(sample, size.columns);
    std::size_t const all = lines.size();
    std::size_t const room = size.rows - 1;
    Line footer{{fmt::format("{}   {}", keys, OnlyReads), Style::Faint}};
    scrolled = std::min(scrolled, all > room ? all - room : 0);
    if (all > room && room > 1) {
        auto const second = lines.begin() + 1;
        lines.erase(second, second + static_cast<std::ptrdiff_t>(scrolled));
        std::size_t const below = all - room - scrolled;
        footer = {
            {fmt::format("{}   {}lines {} to {} of {}, arrows scroll", keys,
                         below > 0 ? fmt::format("{} more lines   ", below) : "", scrolled + 2, scrolled + room, all),
             Style::Warning}};
    }
    lines.resize(room);
    lines.push_back(std::move(footer));
    for (Line& line : lines) {
        line = Clip(std::move(line), size.columns);
    }
    return lines;
}

std::string PlainText(Sample const& sample, std::size_t columns) {
    std::string text;
    for (Line const& line : Body(sample, columns)) {
        std::string row;
        for (Span const& span : line) {
            row += span.text;
        }
        text += row.substr(0, row.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

} // namespace harvlink::cli::watch
