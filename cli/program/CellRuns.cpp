#include "cli/program/CellRuns.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>
#include <system_error>
#include <thread>

#include <fmt/format.h>

#include "cli/program/CommandLine.h"
#include "cli/program/Terminal.h"
#include "words/text/Encoding.h"
#include "words/text/Printable.h"
#include "words/text/Text.h"

namespace harvlink::cli {

namespace {

/// 0 if it has no end.
std::size_t WidthOf(Console const& console) {
    return console.outputIsTerminal ? TerminalWidth() : 0;
}

} // namespace

CellRuns::Run::Run(CellRuns& runs, std::string cell) : runs_(runs), cell_(std::move(cell)) {}

void CellRuns::Run::Event(Json const& event, std::string_view text) {
    std::lock_guard const lock(runs_.showing_);
    runs_.hasSeries_ = true;
    Json record{{"cell", cell_}};
    record.update(event);
    runs_.output_.ShowEvent(record, fmt::format("{}  {}", Printable(cell_), text));
}

void CellRuns::Run::Problem(std::string_view line) {
    std::lock_guard const lock(runs_.showing_);
    runs_.output_.Problem(fmt::format("{}: {}", Printable(cell_), line));
}

Json CellRuns::Run::Result() const {
    if (documents_.size() == 1) {
        return documents_.front();
    }
    return !documents_.empty() ? Json(documents_) : HasText() ? Json(out_.str()) : Json();
}

int CellRuns::Finish() {
    RunAll();
    for (Run const& run : runs_) {
        ShowErrors(run);
    }
    if (!hasSeries_) {
        Show();
    }
    return std::ranges::max_element(runs_, {}, &Run::exit)->exit;
}

void CellRuns::RunAll() {
    std::vector<std::jthread> threads;
    for (Run& run : runs_) {
        auto const body = [&run] {
            ThreadEncoding const encoding{TextEncoding(run.encoding)};
            run.exit = run.work();
        };
        try {
            threads.emplace_back(body);
        } catch (std::system_error const&) {
            run.Problem("this computer gives no thread for it");
            run.exit = ExitStatus::Failure;
        }
    }
}

void CellRuns::ShowErrors(Run const& run) {
    std::string const errors = run.RestOfErrors();
    for (std::string_view const line : Split(errors, '\n')) {
        if (!line.empty()) {
            output_.console().err << fmt::format("{}: {}\n", Printable(run.Cell()), line);
        }
    }
}

void CellRuns::Show() {
    std::vector<CellDocument> cells;
    Json all = Json::object();
    for (Run const& run : runs_) {
        cells.emplace_back(run.Cell(), run.Result());
        all[run.Cell()] = cells.back().second;
    }
    if (output_.json) {
        output_.Show(all);
    } else if (std::ranges::any_of(runs_, &Run::HasText)) {
        for (auto const& [cell, text] : cells) {
            output_.ShowText(Printable(cell) + ":\n" + (text.is_string() ? text.get<std::string>() : "-\n"));
        }
    } else if (std::ranges::any_of(cells, [](CellDocument const& cell) { return !cell.second.is_null(); })) {
        output_.console().out << FormatCells(cells, output_.HasColour(), WidthOf(output_.console())) << std::flush;
    }
}

} // namespace harvlink::cli
