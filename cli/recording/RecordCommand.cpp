#include "cli/recording/RecordCommand.h"

#include <memory>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "cli/recording/Plan.h"
#include "cli/recording/RecordRun.h"
#include "recording/model/TimeText.h"
#include "words/text/InputError.h"
#include "words/text/Path.h"
#include "words/text/Text.h"

namespace harvlink::cli::recordings {

namespace {

constexpr char const* RecordNotes =
    "The command only reads from the controllers. Ctrl-C ends the recording. If FILE exists, the\n"
    "recording is continued. --keep and --max-size delete the oldest samples first.\n"
    "A black box (--before) keeps the last samples in memory, or in the file --ring, and writes a\n"
    "file for each event, named by cell, time and event. --on takes alarm, silent and servo-off,\n"
    "separated by commas. It may run beside a recording.\n\n"
    "With --io, signals of a class are looked up on each controller when recording begins.";

struct RecordArguments {
    PlanArguments plan;
    std::string out;
    std::string keep;
    std::string maxSize;
    std::string length;
    std::string before;
    std::string after = "10s";
    std::string on = "alarm,silent,servo-off";
    std::string folder = ".";
    std::string ring;
};

recording::BlackBoxOptions BoxOptionsOf(RecordArguments const& arguments) {
    recording::BlackBoxOptions options;
    options.folder = words::PathOf(arguments.folder);
    options.ringFile = words::PathOf(arguments.ring);
    options.before = recording::ParseDuration(arguments.before);
    options.after = recording::ParseDuration(arguments.after);
    options.on.clear();
    for (std::string_view const name : words::Split(arguments.on, ',')) {
        if (name != "alarm" && name != "silent" && name != "servo-off") {
            throw words::InputError(fmt::format("--on: '{}' is not one of alarm, silent, servo-off", name));
        }
        options.on.emplace_back(name == "alarm" ? "alarm-raised" : name);
    }
    return options;
}

RecordPlan MakePlan(RecordArguments const& arguments, Session& session) {
    if (arguments.out.empty() && arguments.before.empty()) {
        throw words::InputError("give --out for a recording, --before for a black box, or both");
    }
    if (arguments.before.empty() && !arguments.ring.empty()) {
        throw words::InputError("--ring belongs to a black box, --before");
    }
    RecordPlan plan;
    plan.controllers = ControllersOf(arguments.plan, session);
    plan.out = arguments.out;
    if (!arguments.keep.empty()) {
        plan.recorder.store.keep = recording::ParseDuration(arguments.keep);
    }
    if (!arguments.maxSize.empty()) {
        constexpr std::uint64_t Least = 1 << 20;
        plan.recorder.store.maxBytes = recording::ParseSize(arguments.maxSize);
        if (plan.recorder.store.maxBytes < Least) {
            throw words::InputError("--max-size must be at least 1M");
        }
    }
    if (!arguments.length.empty()) {
        plan.length = recording::ParseDuration(arguments.length);
    }
    if (!arguments.before.empty()) {
        plan.box = BoxOptionsOf(arguments);
    }
    return plan;
}

} // namespace

} // namespace harvlink::cli::recordings

namespace harvlink::cli {

void AddRecordCommand(CLI::App& app, Session& session) {
    auto arguments = std::make_shared<recordings::RecordArguments>();
    CLI::App* const verb = app.add_subcommand("record", "Record controllers into a file, or what came before an alarm");
    arguments->plan.AddOptions(*verb);
    verb->add_option("--out", arguments->out, "The recording")->type_name("FILE");
    verb->add_option("--keep", arguments->keep, "Drop what is older, such as 7d")->type_name("DURATION");
    verb->add_option("--max-size", arguments->maxSize, "Drop the oldest when the file is larger, such as 2G")
        ->type_name("SIZE");
    verb->add_option("--for", arguments->length, "End after this time")->type_name("DURATION");
    verb->add_option("--before", arguments->before, "Black box: how much of the time before an event, such as 60s")
        ->type_name("DURATION");
    verb->add_option("--after", arguments->after, "Black box: and how much after it")
        ->type_name("DURATION")
        ->capture_default_str();
    verb->add_option("--on", arguments->on, "Black box: for which events")->type_name("EVENTS")->capture_default_str();
    verb->add_option("--folder", arguments->folder, "Black box: where the files go; made if it is not there")
        ->type_name("FOLDER")
        ->capture_default_str();
    verb->add_option("--ring", arguments->ring, "Black box: keep the time before in this file, not in memory")
        ->type_name("FILE");
    SetExamples(*verb,
                {"--cell press1 record --out press1.harvlink",
                 "record --all --out plant.harvlink --keep 7d --max-size 2G",
                 "record --all --before 60s --after 10s --on alarm,silent,servo-off --folder incidents"},
                recordings::RecordNotes);
    verb->callback([arguments, &session] {
        auto plan = std::make_shared<recordings::RecordPlan>(recordings::MakePlan(*arguments, session));
        session.LocallyForAllCells([plan](Output& output) { return recordings::RunRecord(*plan, output); });
    });
}

} // namespace harvlink::cli
