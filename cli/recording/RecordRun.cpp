#include "cli/recording/RecordRun.h"

#include <algorithm>
#include <optional>

#include <fmt/format.h>

#include "cli/output/Progress.h"
#include "cli/program/CommandLine.h"
#include "cli/program/Interrupt.h"
#include "recording/fleet/FleetAdapter.h"
#include "recording/model/TimeText.h"
#include "words/text/Path.h"

namespace harvlink::cli::recordings {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// What a fleet reads on its way into a recorder or a black box.
template <typename Sink>
class Feed {
public:
    template <typename... Options>
    explicit Feed(Options const&... options)
        : sink(options...),
          adapter({[this](auto const& controller) { return sink.AddController(controller); },
                   [this](auto const& reading) { return sink.AddReading(reading); }}) {}

    template <typename Record>
    void Put(Record const& record) {
        sink.Put(adapter.Convert(record));
    }

    Sink sink;
    recording::FleetAdapter adapter;
};

recording::Microseconds MicrosecondsOf(auto time) {
    return std::chrono::duration_cast<std::chrono::microseconds>(time.time_since_epoch()).count();
}

/// Now, not when something has happened and can't be written.
void MakeFolder(std::filesystem::path const& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        throw recording::RecordingError(
            fmt::format("can't make {}: {}", words::TextOf(folder), error.default_error_condition().message()));
    }
}

class RecordRun {
public:
    RecordRun(RecordPlan const& plan, Output& output) : plan_(plan), output_(output) {
        if (!plan.out.empty()) {
            recorder_.emplace(words::PathOf(plan.out), plan.recorder);
        }
        if (plan.box) {
            MakeFolder(plan.box->folder);
            box_.emplace(*plan.box);
        }
    }

    int Run() {
        Interrupt const interrupt;
        if (!Start()) {
            return ExitStatus::Failure;
        }
        auto const begin = steady_clock::now();
        auto const isOver = [&] { return plan_.length && steady_clock::now() - begin >= *plan_.length; };
        {
            Progress progress(output_, "recording");
            while (!interrupt.Wait(milliseconds(0)) && !isOver() && Problem().empty()) {
                TakeAll();
                ShowProgress(progress);
            }
            fleet_.Stop();
            TakeAll();
            ForEachFeed([](auto& feed) { feed.sink.Close(); });
        }
        return Finish();
    }

private:
    template <typename Use>
    void ForEachFeed(Use const& use) {
        if (recorder_) {
            use(*recorder_);
        }
        if (box_) {
            use(*box_);
        }
    }

    bool Start() {
        for (PlannedController const& controller : plan_.controllers) {
            FleetCell const& cell = controller.cell;
            auto groups = controller.groups;
            StatusInfo status = AddSignalsByClass(controller, groups);
            status = status.StatusCode == 0 ? fleet_.Add(cell.name, cell.options, groups) : status;
            if (status.StatusCode != 0) {
                output_.Failure(status, cell.name);
                return false;
            }
            ForEachFeed([&](auto& feed) {
                feed.adapter.AddController({cell.name, cell.options.address, cell.encoding});
            });
        }
        StatusInfo const status = fleet_.Start();
        if (status.StatusCode != 0) {
            output_.Failure(status);
        }
        return status.StatusCode == 0;
    }

    void TakeAll() {
        constexpr milliseconds Wait(100);
        std::size_t count = fleet_.Take(samples_, Wait);
        for (; count > 0; count = fleet_.Take(samples_, milliseconds(0))) {
            for (std::size_t i = 0; i < count; ++i) {
                if (samples_[i].quality != FleetQuality::NeverRead && IsWanted(samples_[i])) {
                    ForEachFeed([&](auto& feed) { feed.Put(samples_[i]); });
                }
            }
            taken_ += count;
        }
        while ((count = fleet_.TakeEvents(events_, milliseconds(0))) > 0) {
            for (std::size_t i = 0; i < count; ++i) {
                ForEachFeed([&](auto& feed) { feed.Put(events_[i]); });
            }
        }
        NoteLosses();
    }

    /// With --generation, the version of the software decides: another machine than the one that is meant ends the recording.
    bool IsWanted(FleetSample const& sample) {
        auto const found = std::find_if(plan_.controllers.begin(), plan_.controllers.end(),
                                        [&](auto const& each) { return each.cell.name == sample.controller; });
        if (found == plan_.controllers.end()) {
            return true;
        }
        auto const wrong = WrongGeneration(found->cell, sample.value);
        if (wrong) {
            wrongMachine_ = fmt::format("{}: {}", sample.controller, wrong->Message);
        }
        return !wrong;
    }

    /// What the engine had to drop is missing in the recording like anything else.
    void NoteLosses() {
        auto const dropped = fleet_.Statistics().droppedSamples;
        if (dropped > dropped_) {
            auto const now = MicrosecondsOf(std::chrono::system_clock::now());
            auto const monotonic = MicrosecondsOf(steady_clock::now());
            ForEachFeed([&](auto& feed) { feed.sink.NoteLoss(dropped - dropped_, now, monotonic); });
        }
        dropped_ = dropped;
    }

    /// Why recording has ended; empty while it goes on.
    std::string Problem() {
        std::string problem = wrongMachine_;
        ForEachFeed([&](auto& feed) { problem = problem.empty() ? feed.sink.Status().problem : problem; });
        return problem;
    }

    void ShowProgress(Progress& progress) {
        auto const now = steady_clock::now();
        if (now - shown_ < std::chrono::seconds(1)) {
            return;
        }
        double const seconds = std::chrono::duration<double>(now - shown_).count();
        double const rate = static_cast<double>(taken_ - shownTaken_) / seconds;
        shown_ = now;
        shownTaken_ = taken_;
        if (output_.json) {
            output_.ShowEvent(StatusJson(rate), "");
        } else {
            progress.Show(Line(StatusJson(rate)));
        }
    }

    Json StatusJson(double rate) const {
        Json json{{"samples_per_second", rate}};
        std::uint64_t dropped = 0;
        if (recorder_) {
            recording::RecorderStatus const status = recorder_->sink.Status();
            json["bytes"] = status.fileBytes;
            json["log_bytes"] = status.logBytes;
            json["last_commit"] = status.lastCommit == 0 ? Json() : Json(recording::FormatTime(status.lastCommit));
            dropped += status.dropped;
        }
        if (box_) {
            recording::BlackBoxStatus const status = box_->sink.Status();
            json["samples_in_memory"] = status.samples;
            json["incidents"] = status.incidents.size();
            dropped += status.dropped;
        }
        json["dropped"] = dropped;
        return json;
    }

    /// Short enough for a line of 79 characters with its time, as long as there is not both a file and a black box.
    static std::string Line(Json const& status) {
        std::string line = fmt::format("{:.0f} samples/s", status["samples_per_second"].get<double>());
        if (status.contains("bytes")) {
            line += fmt::format(", {}, log {}", recording::FormatSize(status["bytes"].get<std::uint64_t>()),
                                recording::FormatSize(status["log_bytes"].get<std::uint64_t>()));
        }
        line += fmt::format(", dropped {}", status["dropped"].get<std::uint64_t>());
        if (status.contains("last_commit") && status["last_commit"].is_string()) {
            constexpr std::size_t Date = 11; // and its "T"
            constexpr std::size_t Time = 8;
            line += fmt::format(", written {}Z", status["last_commit"].get<std::string>().substr(Date, Time));
        }
        if (status.contains("incidents")) {
            line += fmt::format(", {} in memory, {} incidents", status["samples_in_memory"].get<std::size_t>(),
                                status["incidents"].get<std::size_t>());
        }
        return line;
    }

    int Finish() {
        if (std::string const problem = Problem(); !problem.empty()) {
            output_.Problem(problem);
            return ExitStatus::Failure;
        }
        Json result{{"samples", taken_}, {"dropped", StatusJson(0)["dropped"]}};
        if (recorder_) {
            result["file"] = plan_.out;
        }
        if (box_) {
            Json files = Json::array();
            for (auto const& file : box_->sink.Status().incidents) {
                files.push_back({{"incident", words::TextOf(file)}});
            }
            result["incidents"] = files;
        }
        output_.json ? output_.ShowEvent(result, "") : output_.Show(result);
        return ExitStatus::Success;
    }

    RecordPlan const& plan_;
    Output& output_;
    std::optional<Feed<recording::Recorder>> recorder_;
    std::optional<Feed<recording::BlackBox>> box_;
    Fleet fleet_;
    std::vector<FleetSample> samples_ = std::vector<FleetSample>(1024);
    std::vector<FleetEvent> events_ = std::vector<FleetEvent>(64);
    std::uint64_t taken_ = 0;
    std::uint64_t shownTaken_ = 0;
    std::uint64_t dropped_ = 0;
    std::string wrongMachine_;
    steady_clock::time_point shown_ = steady_clock::now();
};

} // namespace

int RunRecord(RecordPlan const& plan, Output& output) {
    try {
        return RecordRun(plan, output).Run();
    } catch (recording::RecordingError const& error) {
        output.Problem(error.what());
        return ExitStatus::Failure;
    }
}

} // namespace harvlink::cli::recordings
