#include <algorithm>
#include <memory>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/CommandLine.h"
#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "cli/program/WholeFile.h"
#include "cli/recording/Arguments.h"
#include "cli/recording/RecordingCommands.h"
#include "page/EmbeddedPage.h"
#include "recording/read/History.h"
#include "words/text/InputError.h"
#include "words/text/Json.h"
#include "words/text/Path.h"

namespace harvlink::cli::recordings {

using words::PathOf;
using words::TextOf;

namespace {

using recording::Microseconds;

struct PlotArguments : PartArguments {
    std::string out;
    std::size_t points = 4000;
    bool force = false;
};

/// A line of the plot: where it comes from, and what stands beside it.
struct Line {
    recording::HistoryQuery::Item item;
    std::string name;
    std::string unit;
};

/// Without the numbers that only describe others, such as the tool of a position: where any has a unit, those without stay out.
std::vector<Line> LinesOf(recording::RecordedReading const& reading) {
    bool const hasUnits = std::ranges::any_of(reading.items, [](auto const& item) { return !item.unit.empty(); });
    std::vector<Line> lines;
    for (std::size_t place = 0; place < reading.items.size(); ++place) {
        recording::RecordedItem const& item = reading.items[place];
        if (item.type != recording::RecordedType::Text && (!hasUnits || !item.unit.empty())) {
            lines.push_back({{reading.name, place},
                             item.field.empty() ? reading.name : reading.name + " " + item.field,
                             item.unit});
        }
    }
    return lines;
}

Json NumberJson(recording::RecordedValue const& value) {
    if (auto const* const integer = std::get_if<std::int64_t>(&value)) {
        return *integer;
    }
    auto const* const real = std::get_if<double>(&value);
    return real != nullptr ? Json(*real) : Json();
}

Json SeriesJson(std::size_t id, std::string const& name, std::string const& unit,
                recording::HistorySeries const& series) {
    Json times = Json::array();
    Json low = Json::array();
    Json high = Json::array();
    Json last = Json::array();
    for (recording::HistorySeries::Point const& point : series.points) {
        times.push_back(static_cast<double>(point.time) / 1e3);
        low.push_back(NumberJson(point.low));
        high.push_back(NumberJson(point.high));
        last.push_back(NumberJson(point.last));
    }
    return {{"id", id},
            {"name", name},
            {"unit", unit},
            {"times", std::move(times)},
            {"low", std::move(low)},
            {"high", std::move(high)},
            {"last", std::move(last)}};
}

/// The series of one controller, appended to the others.
void AppendSeries(Json& all, std::string const& file, recording::Catalogue const& contents,
                  std::vector<std::uint32_t> const& readings, recording::HistoryQuery query) {
    std::vector<Line> lines;
    for (std::uint32_t const id : readings) {
        recording::RecordedReading const& reading = contents.readings[id - 1];
        if (contents.controllers[reading.controller - 1].name == query.controller) {
            std::ranges::move(LinesOf(reading), std::back_inserter(lines));
        }
    }
    for (Line const& line : lines) {
        query.items.push_back(line.item);
    }
    recording::HistoryResult const result = ReadHistory(PathOf(file), query);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string const prefix = contents.controllers.size() > 1 ? query.controller + " " : std::string();
        all.push_back(SeriesJson(all.size() + 1, prefix + lines[i].name, lines[i].unit, result.series[i]));
    }
}

Json EventsJson(std::string const& file, recording::TimeRange const& range, PlotArguments const& arguments) {
    Json events = Json::array();
    std::vector<recording::PastEvent> past = recording::ReadPastEvents(PathOf(file), range);
    std::ranges::reverse(past); // the newest first, as the page has them
    for (recording::PastEvent const& event : past) {
        if (arguments.IsWanted(event.controller)) {
            bool const isAlarm = event.event.kind.starts_with("alarm");
            events.push_back({{"id", event.number},
                              {"time", static_cast<double>(event.event.time) / 1e3},
                              {"controller", event.controller},
                              {"kind", event.event.kind},
                              {"code", isAlarm ? std::max(event.event.before, event.event.after) : 0},
                              {"text", event.event.text}});
        }
    }
    return events;
}

Json ContentOf(recording::Recording& source, PlotArguments const& arguments) {
    if (arguments.items.empty()) {
        throw words::InputError("choose what to plot with --item; recording info lists the items");
    }
    std::vector<std::uint32_t> const readings = arguments.Readings(source);
    recording::TimeRange range = arguments.Range(source);
    recording::RecordingInfo const info = source.Info();
    range.begin = std::max(range.begin, info.begin);
    range.end = std::min(range.end, info.end + 1);
    Json series = Json::array();
    for (recording::RecordedController const& controller : source.Contents().controllers) {
        recording::HistoryQuery query;
        query.controller = controller.name;
        query.from = range.begin;
        query.to = range.end;
        query.points = arguments.points;
        query.longest = std::chrono::hours(1); // nobody else waits for it
        AppendSeries(series, arguments.file, source.Contents(), readings, query);
    }
    if (series.empty()) {
        throw words::InputError("what is chosen has texts only, and they can't be plotted");
    }
    return {{"title", TextOf(PathOf(arguments.file).filename())}, // a page that is handed on names no folder
            {"from", static_cast<double>(range.begin) / 1e3},
            {"to", static_cast<double>(range.end) / 1e3},
            {"series", std::move(series)},
            {"events", EventsJson(arguments.file, range, arguments)}};
}

std::string_view PageFile(std::string_view name) {
    auto const files = page::Files();
    auto const file = std::ranges::find(files, name, &page::File::name);
    return {reinterpret_cast<char const*>(file->content.data()), file->content.size()};
}

/// One file with everything in it, and the permission to load nothing else.
std::string PageOf(Json const& content) {
    // A "<" of a text could end the script; JSON can say it in another way. What is not UTF-8 is shown as such.
    std::string json = content.dump(-1, ' ', false, Json::error_handler_t::replace);
    for (std::size_t at = json.find('<'); at != std::string::npos; at = json.find('<', at)) {
        json.replace(at, 1, "\\u003c");
    }
    return fmt::format(R"(<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; script-src 'unsafe-inline'; style-src 'unsafe-inline'">
<title>Harvlink</title>
<style>{}</style>
</head>
<body>
<script type="application/json" id="content">{}</script>
<script type="module">{}</script>
</body>
</html>
)",
                       PageFile("app.css"), json, PageFile("plot.js"));
}

int Plot(Output& output, recording::Recording& source, PlotArguments const& arguments) {
    Json const content = ContentOf(source, arguments);
    std::string const out = arguments.out.empty() ? TextOf(PathOf(arguments.file).stem()) + ".html" : arguments.out;
    try {
        WriteWholeFile(PathOf(out), PageOf(content), arguments.force);
    } catch (FileError const& error) {
        output.Problem(error.what());
        return ExitStatus::Failure;
    }
    output.Show({{"file", out}, {"lines", content["series"].size()}, {"events", content["events"].size()}});
    return ExitStatus::Success;
}

} // namespace

void AddPlot(CLI::App& family, Session& session) {
    auto arguments = std::make_shared<PlotArguments>();
    CLI::App* const verb = family.add_subcommand("plot", "Write plots as one HTML file that opens anywhere");
    arguments->AddFile(*verb);
    arguments->AddTimes(*verb);
    arguments->AddChoice(*verb);
    verb->add_option("--points", arguments->points, "The most points of a line; extremes in between are kept")
        ->check(CLI::Range(10, 1'000'000).description(""))
        ->type_name("COUNT")
        ->capture_default_str();
    verb->add_option("--out", arguments->out, "File to write; the name of the recording with .html without it")
        ->type_name("FILE");
    verb->add_flag("--force", arguments->force, "Replace the file if there is one");
    SetExamples(*verb,
                {"recording plot night.harvlink --item 'position R1 base'",
                 "recording plot night.harvlink --item 'torque R1' --from -1m --out stop.html --force"},
                TimeHelp);
    verb->callback([arguments, &session] {
        session.Locally([arguments](Output& output) {
            return WithRecording(output, arguments->file,
                                 [&](recording::Recording& source) { return Plot(output, source, *arguments); });
        });
    });
}

} // namespace harvlink::cli::recordings
