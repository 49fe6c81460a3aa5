#include "cli/watch/BoardText.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <fmt/format.h>

#include "cli/watch/LineMaker.h"
#include "cli/watch/SampleJson.h"
#include "words/text/Encoding.h"
#include "words/text/Printable.h"
#include "words/text/Text.h"
#include "words/values/StateText.h"

namespace harvlink::cli::watch {

namespace {

constexpr std::array<Named<FleetState>, 5> LinkNames{{{"connecting", FleetState::Connecting},
                                                      {"online", FleetState::Online},
                                                      {"late", FleetState::Late},
                                                      {"silent", FleetState::Silent},
                                                      {"refused", FleetState::Refused}}};

constexpr std::size_t NarrowestCell = 8;
constexpr std::size_t WidestCell = 24;

std::string FirstAlarm(ActiveAlarms const& alarms) {
    std::string first;
    int more = -1;
    for (AlarmData const& alarm : alarms.alarms) {
        if (alarm.code != 0 && ++more == 0) {
            first = fmt::format("{}-{} {}", alarm.code, alarm.subcode, Printable(ControllerText(alarm.name)));
        }
    }
    return more > 0 ? fmt::format("{} and {} more", first, more) : first;
}

/// What is wrong with a controller, in the last column; the job if nothing is.
Span LastColumn(CellRow const& row) {
    ThreadEncoding const encoding{TextEncoding(row.encoding)};
    if (row.problem) {
        return FailureSpan(*row.problem);
    }
    if (std::string alarm = row.alarms ? FirstAlarm(*row.alarms) : ""; !alarm.empty()) {
        return {std::move(alarm), Style::Bad};
    }
    if (row.HowBad() == CellRow::Rank::Alarm) {
        return {row.state->isAlarming ? "alarm" : "error", Style::Bad};
    }
    std::string const job = row.job ? Printable(ControllerText(row.job->name)) : "";
    return {job.empty() ? "" : fmt::format("{} line {}", job, row.job->line)};
}

Style StyleOfLink(CellRow const& row) {
    return row.HowBad() == CellRow::Rank::NoAnswer ? Style::Bad
           : row.link == FleetState::Online        ? Style::Good
                                                   : Style::Warning;
}

std::size_t CellColumnWidth(std::vector<CellRow> const& rows) {
    std::size_t width = NarrowestCell;
    for (CellRow const& row : rows) {
        width = std::max(width, ColumnsOf(Printable(row.cell)));
    }
    return std::min(width, WidestCell);
}

Line RowLine(CellRow const& row, std::size_t width, bool isChosen) {
    bool const isStale = row.link != FleetState::Online && row.link != FleetState::Late;
    auto const flag = [&](bool isOn, char const* yes, char const* no) {
        return row.state && !isStale ? (isOn ? yes : no) : "-";
    };
    ControllerStateData const state = row.state.value_or(ControllerStateData{});
    std::string const mode = row.state && !isStale ? StateJson(state)["mode"].get<std::string>() : "-";
    std::string const cell(FirstColumns(Printable(row.cell), width));
    return {{isChosen ? "> " : "  ", isChosen ? Style::Chosen : Style::Normal},
            {PadRight(cell, width) + "  ", isChosen ? Style::Chosen : Style::Normal},
            {fmt::format("{:<10}  ", NameOf(LinkNames, row.link)), StyleOfLink(row)},
            {fmt::format("{}  ", row.since == CellRow::Time{} ? "        " : ClockText(row.since)), Style::Faint},
            {fmt::format("{:<6}  {:<5}  {:<7}  ", mode, flag(state.isServoOn, "on", "off"),
                         flag(state.isRunning, "running", flag(state.isProgramPendantHold, "hold", "stopped")))},
            LastColumn(row)};
}

Line Title(std::vector<CellRow> const& rows) {
    auto const count = [&](CellRow::Rank rank) { return std::ranges::count(rows, rank, &CellRow::HowBad); };
    Line line{{fmt::format("{} controllers", rows.size()), Style::Title}};
    auto const add = [&](CellRow::Rank rank, char const* what, Style style) {
        if (auto const number = count(rank); number > 0) {
            line.push_back({fmt::format("   {} {}", number, what), style});
        }
    };
    add(CellRow::Rank::NoAnswer, "without an answer", Style::Bad);
    add(CellRow::Rank::Alarm, "with an alarm", Style::Bad);
    add(CellRow::Rank::Late, "late", Style::Warning);
    add(CellRow::Rank::Hold, "on hold", Style::Warning);
    add(CellRow::Rank::Fine, "fine", Style::Good);
    return line;
}

Line Header(std::size_t width) {
    return {{fmt::format("  {:<{}}  {:<10}  {:<8}  {:<6}  {:<5}  {:<7}  {}", "Cell", width, "Link", "Since", "Mode",
                         "Servo", "Runs", "Alarm or job"),
             Style::Faint}};
}

} // namespace

std::vector<Line> LayOut(std::vector<CellRow> const& rows, Size size, std::size_t chosen) {
    constexpr std::size_t AroundRows = 3; // title, header and the last line
    if (size.rows == 0 || size.columns == 0) {
        return {};
    }
    std::size_t const width = CellColumnWidth(rows);
    std::size_t const room = size.rows > AroundRows ? size.rows - AroundRows : 1;
    std::size_t const first = chosen < room ? 0 : chosen - room + 1;
    std::vector<Line> lines{Title(rows), Header(width)};
    for (std::size_t i = first; i < std::min(rows.size(), first + room); ++i) {
        lines.push_back(RowLine(rows[i], width, i == chosen));
    }
    lines.resize(size.rows - 1);
    std::string const more = rows.size() > room ? fmt::format("   row {} of {}", chosen + 1, rows.size()) : "";
    lines.push_back({{fmt::format("arrows choose, Enter opens, q quits{}   watch only reads", more), Style::Faint}});
    for (Line& line : lines) {
        line = Clip(std::move(line), size.columns);
    }
    return lines;
}

std::string PlainText(std::vector<CellRow> const& rows, std::size_t columns) {
    std::size_t const width = CellColumnWidth(rows);
    std::vector<Line> lines{Title(rows), Header(width)};
    for (CellRow const& row : rows) {
        lines.push_back(RowLine(row, width, false));
    }
    std::string text;
    for (Line const& line : lines) {
        std::string row;
        for (Span const& span : Clip(line, columns)) {
            row += span.text;
        }
        text += row.substr(0, row.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

Json RowsJson(std::vector<CellRow> const& rows) {
    Json cells = Json::object();
    for (CellRow const& row : rows) {
        ThreadEncoding const encoding{TextEncoding(row.encoding)};
        bool const isAnswering = row.HowBad() != CellRow::Rank::NoAnswer;
        cells[row.cell] = {{"host", row.host},
                           {"link", NameOf(LinkNames, row.link)},
                           {"since", row.since == CellRow::Time{} ? Json() : Json(TimeText(row.since))},
                           {"answered", isAnswering && row.link != FleetState::Connecting},
                           {"state", isAnswering && row.state ? StateJson(*row.state) : Json()},
                           {"job", isAnswering && row.job ? JobJson(*row.job) : Json()},
                           {"alarms", isAnswering && row.alarms ? AlarmsJson(*row.alarms) : Json()},
                           {"problem", row.problem
                                           ? Json{{"code", row.problem->StatusCode}, {"message", row.problem->Message}}
                                           : Json()}};
    }
    return {{"time", TimeText(std::chrono::system_clock::now())}, {"cells", cells}};
}

} // namespace harvlink::cli::watch
