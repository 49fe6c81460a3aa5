#include "cli/recording/RecordCommand.h"

#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <ostream>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/CommandLine.h"
#include "cli/program/Help.h"
#include "cli/program/Interrupt.h"
#include "cli/program/Session.h"
#include "cli/recording/Plan.h"
#include "recording/blackbox/BlackBox.h"
#include "recording/fleet/FleetAdapter.h"
#include "recording/model/TimeText.h"
#include "recording/write/Recorder.h"
#include "words/text/InputError.h"
#include "words/text/Text.h"

namespace harvlink::cli::recordings {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr char const* RecordNotes =
    "The command only reads from the controllers. Ctrl-C ends the recording. If FILE exists, the\n"
    "recording is continued. --keep and --max-size delete the oldest samples first.\n"
    "A black box (--before) keeps the last samples in memory and writes a file for each event,\n"
    "named by cell, time and event. --on takes alarm, silent and servo-off, separated by commas.";

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
};

struct Plan {
    std::vector<FleetCell> controllers;
    std::vector<FleetGroup> groups;
    std::string out;
    recording::RecorderOptions recorder;
    std::optional<recording::BlackBoxOptions> box;
    std::optional<std::chrono::microseconds> length;
};

recording::BlackBoxOptions BoxOptionsOf(RecordArguments const& arguments) {
    recording::BlackBoxOptions options;
    options.folder = arguments.folder;
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

Plan MakePlan(RecordArguments const& arguments, Session& session) {
    if (arguments.out.empty() == arguments.before.empty()) {
        throw words::InputError("give either --out for a recording, or --before for a black box");
    }
    Plan plan;
    plan.controllers = ControllersOf(session);
    plan.groups = GroupsOf(arguments.plan);
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

/// Reads a fleet into a sink, which is a recorder or a black box.
template <typename Sink>
class Recording {
public:
    Recording(Sink& sink, Plan const& plan, Output& output)
        : sink_(sink),
          plan_(plan),
          output_(output),
          adapter_({[&sink](auto const& controller) { return sink.AddController(controller); },
                    [&sink](auto const& reading) { return sink.AddReading(reading); }}) {}

    int Run() {
        for (FleetCell const& controller : plan_.controllers) {
            StatusInfo const status = fleet_.Add(controller.name, controller.options, plan_.groups);
            if (status.StatusCode != 0) {
                output_.Failure(status, controller.name);
                return ExitStatus::Failure;
            }
            adapter_.AddController(controller.name, controller.options.address);
        }
        if (StatusInfo const status = fleet_.Start(); status.StatusCode != 0) {
            output_.Failure(status);
            return ExitStatus::Failure;
        }
        Interrupt const interrupt;
        auto const begin = steady_clock::now();
        auto const isOver = [&] { return plan_.length && steady_clock::now() - begin >= *plan_.length; };
        while (!interrupt.Wait(milliseconds(0)) && !isOver() && sink_.Status().problem.empty()) {
            TakeAll();
            ShowProgress();
        }
        fleet_.Stop();
        TakeAll();
        sink_.Close();
        return Finish();
    }

private:
    void TakeAll() {
        constexpr milliseconds Wait(100);
        std::size_t count = fleet_.Take(samples_, Wait);
        for (; count > 0; count = fleet_.Take(samples_, milliseconds(0))) {
            for (std::size_t i = 0; i < count; ++i) {
                if (samples_[i].quality != FleetQuality::NeverRead) {
                    sink_.Put(adapter_.Convert(samples_[i]));
                }
            }
            taken_ += count;
        }
        while ((count = fleet_.TakeEvents(events_, milliseconds(0))) > 0) {
            for (std::size_t i = 0; i < count; ++i) {
                sink_.Put(adapter_.Convert(events_[i]));
            }
        }
        NoteLosses();
    }

    /// What the engine had to drop is missing in the recording like anything else.
    void NoteLosses() {
        auto const dropped = fleet_.Statistics().droppedSamples;
        if constexpr (requires { sink_.NoteLoss(1, 0, 0); }) {
            if (dropped > dropped_) {
                using std::chrono::duration_cast;
                using std::chrono::microseconds;
                sink_.NoteLoss(dropped - dropped_,
                               duration_cast<microseconds>(std::chrono::system_clock::now().time_since_epoch()).count(),
                               duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count());
            }
        }
        dropped_ = dropped;
    }

    void ShowProgress() {
        auto const now = steady_clock::now();
        if (now - shown_ < std::chrono::seconds(1)) {
            return;
        }
        double const seconds = std::chrono::duration<double>(now - shown_).count();
        double const rate = static_cast<double>(taken_ - shownTaken_) / seconds;
        shown_ = now;
        shownTaken_ = taken_;
        Json const status = StatusJson(rate);
        if (output_.json) {
            output_.ShowEvent(status, "");
        } else if (output_.Interactive()) {
            output_.console().err << '\r' << Line(status) << "\x1B[K" << std::flush;
            hasLine_ = true;
        }
    }

    Json StatusJson(double rate) const {
        Json json{{"samples_per_second", rate}};
        if constexpr (std::is_same_v<Sink, recording::Recorder>) {
            recording::RecorderStatus const status = sink_.Status();
            json["bytes"] = status.fileBytes;
            json["log_bytes"] = status.logBytes;
            json["dropped"] = status.dropped;
            json["last_commit"] = status.lastCommit == 0 ? Json() : Json(recording::FormatTime(status.lastCommit));
        } else {
            recording::BlackBoxStatus const status = sink_.Status();
            json["samples_in_memory"] = status.samples;
            json["incidents"] = status.incidents.size();
        }
        return json;
    }

    static std::string Line(Json const& status) {
        std::string line = fmt::format("{:.0f} samples/s", status["samples_per_second"].get<double>());
        if (status.contains("incidents")) {
            return line + fmt::format(", {} in memory, {} incidents", status["samples_in_memory"].get<std::size_t>(),
                                      status["incidents"].get<std::size_t>());
        }
        line += fmt::format(", {}, log {}, dropped {}", recording::FormatSize(status["bytes"].get<std::uint64_t>()),
                            recording::FormatSize(status["log_bytes"].get<std::uint64_t>()),
                            status["dropped"].get<std::uint64_t>());
        return line + (status["last_commit"].is_null() ? "" : ", written " + status["last_commit"].get<std::string>());
    }

    int Finish() {
        if (hasLine_) {
            output_.console().err << '\n';
        }
        if (std::string const problem = sink_.Status().problem; !problem.empty()) {
            output_.Problem(problem);
            return ExitStatus::Failure;
        }
        Json result{{"samples", taken_}};
        if constexpr (std::is_same_v<Sink, recording::Recorder>) {
            result["file"] = plan_.out;
            result["dropped"] = sink_.Status().dropped;
        } else {
            Json files = Json::array();
            for (auto const& file : sink_.Status().incidents) {
                files.push_back({{"incident", file.string()}});
            }
            result["incidents"] = files;
        }
        output_.json ? output_.ShowEvent(result, "") : output_.Show(result);
        return ExitStatus::Success;
    }

    Sink& sink_;
    Plan const& plan_;
    Output& output_;
    recording::FleetAdapter adapter_;
    Fleet fleet_;
    std::vector<FleetSample> samples_ = std::vector<FleetSample>(1024);
    std::vector<FleetEvent> events_ = std::vector<FleetEvent>(64);
    std::uint64_t taken_ = 0;
    std::uint64_t shownTaken_ = 0;
    std::uint64_t dropped_ = 0;
    steady_clock::time_point shown_ = steady_clock::now();
    bool hasLine_ = false;
};

int Record(Output& output, Plan const& plan) {
    try {
        if (plan.box) {
            recording::BlackBox box(*plan.box);
            return Recording(box, plan, output).Run();
        }
        recording::Recorder recorder(plan.out, plan.recorder);
        return Recording(recorder, plan, output).Run();
    } catch (recording::RecordingError const& error) {
        output.Problem(error.what());
        return ExitStatus::Failure;
    }
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
    verb->add_option("--folder", arguments->folder, "Black box: where the files go")
        ->type_name("FOLDER")
        ->capture_default_str();
    SetExamples(*verb,
                {"--cell press1 record --out press1.harvlink",
                 "record --all --out plant.harvlink --keep 7d --max-size 2G",
                 "record --all --before 60s --after 10s --on alarm,silent,servo-off --folder incidents"},
                recordings::RecordNotes);
    verb->callback([arguments, &session] {
        auto plan = std::make_shared<recordings::Plan>(recordings::MakePlan(*arguments, session));
        session.LocallyForAllCells([plan](Output& output) { return recordings::Record(output, *plan); });
    });
}

} // namespace harvlink::cli
