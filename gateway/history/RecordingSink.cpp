#include "gateway/history/RecordingSink.h"

#include <chrono>

#include "gateway/history/Incidents.h"

namespace harvlink::gateway {

namespace {

recording::RecorderOptions OptionsOf(RecordingConfig const& config) {
    recording::RecorderOptions options;
    options.store.keep = config.keep;
    options.store.maxBytes = config.maxBytes;
    return options;
}

recording::BlackBoxOptions OptionsOf(IncidentsConfig const& config) {
    recording::BlackBoxOptions options;
    options.folder = config.folder;
    options.before = config.before;
    options.after = config.after;
    options.on = config.on;
    return options;
}

template <typename Target, typename IdsOf>
void AddTo(Target& target, IdsOf& ids, Controller const& controller) {
    auto& own = ids[controller.id];
    own.controller = target.AddController({controller.name, controller.address, controller.encoding});
    for (recording::RecordedReading reading : controller.readings) {
        reading.controller = own.controller;
        own.readings.push_back(target.AddReading(reading));
    }
}

template <typename Target, typename IdsOf>
void PutTo(Target& target, IdsOf const& ids, Sample const& sample) {
    auto const found = ids.find(sample.controller->id);
    if (found == ids.end() || sample.moment.quality == recording::RecordedQuality::NeverRead) {
        return;
    }
    bool const isGood = sample.moment.quality == recording::RecordedQuality::Good;
    target.Put(recording::RecordedSample{found->second.readings.at(sample.reading), sample.moment,
                                         isGood ? sample.values : std::vector<recording::RecordedValue>()});
}

template <typename Target, typename IdsOf>
void PutTo(Target& target, IdsOf const& ids, Event const& event) {
    auto const found = ids.find(event.controller->id);
    if (found != ids.end()) {
        recording::RecordedEvent record = event.record;
        record.controller = found->second.controller;
        target.Put(std::move(record));
    }
}

} // namespace

RecordingSink::RecordingSink(RecordingConfig const& config, Log& log) : log_(log) {
    if (!config.file.empty()) {
        if (config.file.has_parent_path()) {
            std::filesystem::create_directories(config.file.parent_path());
        }
        recorder_ = std::make_unique<recording::Recorder>(config.file, OptionsOf(config));
    }
    if (config.incidents) {
        std::filesystem::create_directories(config.incidents->folder);
        FinishIncidents(config.incidents->folder);
        box_ = std::make_unique<recording::BlackBox>(OptionsOf(*config.incidents));
    }
    thread_ = std::thread([this] { Run(); });
}

RecordingSink::~RecordingSink() {
    {
        std::scoped_lock const lock(mutex_);
        isClosing_ = true;
    }
    wake_.notify_one();
    thread_.join();
}

void RecordingSink::Added(ControllerPtr const& controller) {
    std::scoped_lock const lock(mutex_);
    waiting_.emplace_back(controller);
    wake_.notify_one();
}

void RecordingSink::Removed(ControllerPtr const& /*controller*/) {
    // What was recorded of it stays.
}

void RecordingSink::Take(Batch const& batch) {
    if (batch.samples.empty() && batch.events.empty() && batch.droppedSamples == 0) {
        return;
    }
    std::scoped_lock const lock(mutex_);
    if (batch.droppedSamples > 0) {
        NoteLoss(batch.droppedSamples);
    }
    std::size_t const room = MostWaiting - std::min(MostWaiting, waiting_.size());
    std::size_t const taken = std::min(room, batch.samples.size());
    waiting_.insert(waiting_.end(), batch.samples.begin(), batch.samples.begin() + static_cast<std::ptrdiff_t>(taken));
    if (taken < batch.samples.size()) {
        NoteLoss(batch.samples.size() - taken);
    }
    waiting_.insert(waiting_.end(), batch.events.begin(), batch.events.end());
    wake_.notify_one();
}

/// Losses in a row are one, or the queue of losses would grow without bound.
void RecordingSink::NoteLoss(std::uint64_t samples) {
    lost_ += samples;
    if (!waiting_.empty() && std::holds_alternative<Loss>(waiting_.back())) {
        std::get<Loss>(waiting_.back()).samples += samples;
        return;
    }
    using std::chrono::duration_cast;
    using std::chrono::microseconds;
    waiting_.emplace_back(
        Loss{samples, duration_cast<microseconds>(std::chrono::system_clock::now().time_since_epoch()).count(),
             duration_cast<microseconds>(std::chrono::steady_clock::now().time_since_epoch()).count()});
}

void RecordingSink::Run() {
    std::unique_lock lock(mutex_);
    while (true) {
        wake_.wait(lock, [this] { return isClosing_ || !waiting_.empty(); });
        if (waiting_.empty()) {
            break;
        }
        std::deque<Work> const works = std::exchange(waiting_, {});
        lock.unlock();
        for (Work const& work : works) {
            Do(work);
        }
        CheckProblems();
        lock.lock();
    }
    lock.unlock();
    if (recorder_ != nullptr) {
        recorder_->Close();
    }
    if (box_ != nullptr) {
        box_->Close();
    }
}

void RecordingSink::Do(Work const& work) {
    if (auto const* const controller = std::get_if<ControllerPtr>(&work)) {
        if (recorder_ != nullptr) {
            AddTo(*recorder_, recorderIds_, **controller);
        }
        if (box_ != nullptr) {
            AddTo(*box_, boxIds_, **controller);
        }
        return;
    }
    if (auto const* const loss = std::get_if<Loss>(&work)) {
        if (recorder_ != nullptr) {
            recorder_->NoteLoss(loss->samples, loss->time, loss->monotonic);
        }
        return;
    }
    auto const put = [&](auto const& what) {
        if (recorder_ != nullptr) {
            PutTo(*recorder_, recorderIds_, what);
        }
        if (box_ != nullptr) {
            PutTo(*box_, boxIds_, what);
        }
    };
    if (auto const* const sample = std::get_if<SamplePtr>(&work)) {
        put(**sample);
    } else if (auto const* const event = std::get_if<Event>(&work)) {
        put(*event);
    }
}

void RecordingSink::CheckProblems() {
    if (hasTold_) {
        return;
    }
    std::string problem = recorder_ != nullptr ? recorder_->Status().problem : "";
    problem += box_ != nullptr ? box_->Status().problem : "";
    if (!problem.empty()) {
        hasTold_ = true;
        log_.Error("recording has ended", {{"reason", problem}});
    }
}

std::vector<Figure> RecordingSink::Figures() const {
    std::vector<Figure> figures;
    if (recorder_ != nullptr) {
        recording::RecorderStatus const status = recorder_->Status();
        figures = {
            {"harvlink_recording_up", "Whether the recording goes on.", status.problem.empty() ? 1.0 : 0.0},
            {"harvlink_recording_samples_total", "Samples that were recorded.", static_cast<double>(status.samples)},
            {"harvlink_recording_dropped_samples_total", "Samples that are missing in the recording.",
             static_cast<double>(status.dropped)},
            {"harvlink_recording_file_bytes", "Size of the recording.", static_cast<double>(status.fileBytes)},
            {"harvlink_recording_log_bytes", "Size of the log beside the recording.",
             static_cast<double>(status.logBytes)},
            {"harvlink_recording_last_commit_timestamp_seconds", "When samples were last written to the disk.",
             static_cast<double>(status.lastCommit) / 1e6}};
    }
    if (box_ != nullptr) {
        figures.push_back({"harvlink_recording_incidents_total", "Incidents that were recorded.",
                           static_cast<double>(box_->Status().incidents.size())});
    }
    return figures;
}

} // namespace harvlink::gateway
