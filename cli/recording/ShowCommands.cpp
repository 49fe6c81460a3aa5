#include <memory>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/CommandLine.h"
#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "cli/recording/Arguments.h"
#include "cli/recording/RecordingCommands.h"
#include "recording/model/TimeText.h"
#include "recording/read/ControllerTexts.h"

namespace harvlink::cli::recordings {

namespace {

Json ControllersJson(recording::Catalogue const& contents) {
    Json rows = Json::array();
    for (std::size_t i = 0; i < contents.controllers.size(); ++i) {
        std::size_t readings = 0;
        std::size_t items = 0;
        for (recording::RecordedReading const& reading : contents.readings) {
            if (reading.controller == i + 1) {
                ++readings;
                items += reading.items.size();
            }
        }
        rows.push_back({{"controller", contents.controllers[i].name},
                        {"address", contents.controllers[i].address},
                        {"readings", readings},
                        {"items", items}});
    }
    return rows;
}

Json ItemsJson(recording::Catalogue const& contents) {
    Json rows = Json::array();
    for (recording::RecordedReading const& reading : contents.readings) {
        std::string units;
        for (recording::RecordedItem const& item : reading.items) {
            if (!item.unit.empty() && units.find(item.unit) == std::string::npos) {
                units += (units.empty() ? "" : ", ") + item.unit;
            }
        }
        rows.push_back({{"controller", contents.controllers[reading.controller - 1].name},
                        {"item", reading.name},
                        {"kind", reading.kind},
                        {"values", reading.items.size()},
                        {"unit", units}});
    }
    return rows;
}

int ShowInfo(Output& output, recording::Recording& source, std::string const& file) {
    recording::RecordingInfo const info = source.Info();
    bool const isEmpty = info.segments == 0;
    Json document{{"file", file}, {"schema_version", info.version}};
    if (output.json) {
        document["bytes"] = info.fileBytes;
        document["log_bytes"] = info.logBytes;
    } else {
        document["size"] = recording::FormatSize(info.fileBytes);
        document["log_size"] = recording::FormatSize(info.logBytes);
    }
    document["begin"] = isEmpty ? Json() : Json(recording::FormatTime(info.begin));
    document["end"] = isEmpty ? Json() : Json(recording::FormatTime(info.end));
    document["seconds"] = static_cast<double>(info.end - info.begin) / 1e6;
    document["segments"] = info.segments;
    document["samples"] = info.samples;
    document["stored_values"] = info.values;
    document["events"] = info.events;
    document["gaps"] = info.gaps;
    document["missing_samples"] = info.missing;
    document["controllers"] = ControllersJson(source.Contents());
    document["items"] = ItemsJson(source.Contents());
    output.Show(document);
    return ExitStatus::Success;
}

Json EventJson(recording::Recording const& source, recording::RecordedEvent const& event) {
    return {{"time", recording::FormatTime(event.time)},
            {"controller", source.Contents().controllers[event.controller - 1].name},
            {"event", event.kind},
            {"before", event.before},
            {"after", event.after},
            {"code", event.code},
            {"text", recording::ShownText(event.text)},
            {"card", event.card}};
}

Json GapJson(recording::RecordedGap const& gap) {
    return {{"time", recording::FormatTime(gap.time)},
            {"controller", ""},
            {"event", "gap"},
            {"before", 0},
            {"after", gap.count},
            {"code", 0},
            {"text", gap.reason},
            {"card", fmt::format("{:.3f} s", static_cast<double>(gap.duration) / 1e6)}};
}

int ShowEvents(Output& output, recording::Recording& source, PartArguments const& arguments) {
    recording::TimeRange const range = arguments.Range(source);
    static_cast<void>(arguments.Readings(source)); // finds a wrong name
    auto const gaps = source.Gaps(range);
    auto gap = gaps.begin();
    Json rows = Json::array();
    for (recording::StoredEvent const& event : source.Events(range)) {
        for (; gap != gaps.end() && gap->sequence < event.sequence; ++gap) {
            rows.push_back(GapJson(gap->gap));
        }
        if (arguments.IsWanted(source.Contents().controllers[event.event.controller - 1].name)) {
            rows.push_back(EventJson(source, event.event));
        }
    }
    for (; gap != gaps.end(); ++gap) {
        rows.push_back(GapJson(gap->gap));
    }
    output.Show(rows);
    return ExitStatus::Success;
}

} // namespace

void AddInfo(CLI::App& family, Session& session) {
    auto arguments = std::make_shared<PartArguments>();
    CLI::App* const verb = family.add_subcommand("info", "Show what a recording holds");
    arguments->AddFile(*verb);
    SetExamples(*verb, {"recording info night.harvlink"});
    verb->callback([arguments, &session] {
        session.Locally([arguments](Output& output) {
            return WithRecording(output, arguments->file, [&](recording::Recording& source) {
                return ShowInfo(output, source, arguments->file);
            });
        });
    });
}

void AddEvents(CLI::App& family, Session& session) {
    auto arguments = std::make_shared<PartArguments>();
    CLI::App* const verb =
        family.add_subcommand("events", "Show alarms, changes of mode, servo and job, silence and gaps");
    arguments->AddFile(*verb);
    arguments->AddTimes(*verb);
    verb->add_option("--controller", arguments->controllers, "Only of these controllers")->type_name("NAME");
    SetExamples(*verb,
                {"recording events night.harvlink", "recording events night.harvlink --from -10m --controller press1"},
                TimeHelp);
    verb->callback([arguments, &session] {
        session.Locally([arguments](Output& output) {
            return WithRecording(output, arguments->file,
                                 [&](recording::Recording& source) { return ShowEvents(output, source, *arguments); });
        });
    });
}

} // namespace harvlink::cli::recordings
