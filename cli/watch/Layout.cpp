#include "cli/watch/Layout.h"

#include <algorithm>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "cli/output/Words.h"
#include "cli/watch/GroupLines.h"
#include "cli/watch/LineMaker.h"
#include "words/text/Text.h"
#include "words/values/StateText.h"

namespace harvlink::cli::watch {

namespace {

constexpr char const* Keys = "q quits   reading only: nothing is written to the controller";

void Append(std::vector<Line>& lines, std::vector<Line> const& more) {
    lines.insert(lines.end(), more.begin(), more.end());
}

std::string ClockText(Frame::Time time) {
    return fmt::format("{:%H:%M:%S}", fmt::localtime(std::chrono::system_clock::to_time_t(time)));
}

Line TitleLine(Frame const& frame, std::size_t columns) {
    Line line{
        {fmt::format("{}  {}  {}", frame.host, ScreenText(frame.model), ScreenText(frame.software)), Style::Title}};
    std::string const clock =
        fmt::format("{}  {:.1f} ms", frame.lost ? "no answer" : ClockText(frame.time), frame.duration.count());
    std::size_t const used = WidthOf(line) + clock.size();
    line.push_back({std::string(used < columns ? columns - used : 2, ' ')});
    line.push_back({clock, Style::Faint});
    return line;
}

std::vector<Line> LostLines(Frame const& frame) {
    if (!frame.lost) {
        return {};
    }
    std::string const age =
        frame.time == Frame::Time{} ? "nothing was read yet" : "what follows was read at " + ClockText(frame.time);
    return {{{fmt::format("NO ANSWER since {}. Asking again; {}.", ClockText(frame.lostSince), age), Style::Bad}},
            {FailureSpan(*frame.lost)}};
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
    std::string const name = ScreenText(TrimField(job.value.name));
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
            items.push_back({{fmt::format("{}-{} {}  {}", alarm.code, alarm.subcode, ScreenText(TrimField(alarm.name)),
                                          ScreenText(TrimField(alarm.time))),
                              Style::Bad}});
        }
    }
    if (items.empty()) {
        items.push_back({{"none"}});
    }
    return Flow("Alarms", items, columns);
}

Line VariableItem(VariableFrame const& variable) {
    return {{variable.name + " ", Style::Faint},
            variable.value.IsValid() ? Span{ScreenText(FormatVariableValue(variable.value.value))}
                                     : FailureSpan(variable.value.status)};
}

Line SignalItem(SignalFrame const& signal) {
    Span const state = signal.on.value ? Span{"on", Style::Good} : Span{"off"};
    return {{signal.name + " ", Style::Faint}, signal.on.IsValid() ? state : FailureSpan(signal.on.status)};
}

template <typename Parts, typename Item>
std::vector<Line> Items(Parts const& parts, Item const& item) {
    std::vector<Line> items;
    std::transform(parts.begin(), parts.end(), std::back_inserter(items), item);
    return items;
}

std::vector<Line> Body(Frame const& frame, std::size_t columns) {
    std::vector<Line> lines{TitleLine(frame, columns)};
    Append(lines, LostLines(frame));
    if (frame.time == Frame::Time{}) {
        return lines;
    }
    Append(lines, StateLines(frame.state, columns));
    Append(lines, Flow("Job", {JobItem(frame.job)}, columns));
    Append(lines, AlarmLines(frame.alarms, columns));
    for (GroupFrame const& group : frame.groups) {
        lines.emplace_back();
        Append(lines, GroupLines(group, columns));
    }
    if (!frame.variables.empty() || !frame.signals.empty()) {
        lines.emplace_back();
    }
    Append(lines, Flow("Values", Items(frame.variables, VariableItem), columns));
    Append(lines, Flow("Signals", Items(frame.signals, SignalItem), columns));
    return lines;
}

} // namespace

std::vector<Line> LayOut(Frame const& frame, Size size) {
    if (size.rows == 0 || size.columns == 0) {
        return {};
    }
    std::vector<Line> lines = Body(frame, size.columns);
    std::size_t const room = size.rows - 1;
    Line footer{{Keys, Style::Faint}};
    if (lines.size() > room) {
        footer = {{fmt::format("q quits   {} more lines in a larger window", lines.size() - room), Style::Warning}};
    }
    lines.resize(room);
    lines.push_back(std::move(footer));
    for (Line& line : lines) {
        line = Clip(std::move(line), size.columns);
    }
    return lines;
}

std::string PlainText(Frame const& frame, std::size_t columns) {
    std::string text;
    for (Line const& line : Body(frame, columns)) {
        std::string row;
        for (Span const& span : line) {
            row += span.text;
        }
        text += row.substr(0, row.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

} // namespace harvlink::cli::watch
