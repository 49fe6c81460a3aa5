#include "recording/write/Recorder.h"

#include <algorithm>
#include <exception>

namespace harvlink::recording {

namespace {

Microseconds Now() {
    using std::chrono::duration_cast;
    return duration_cast<std::chrono::microseconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

} // namespace

Recorder::Recorder(std::filesystem::path const& path, RecorderOptions const& options)
    : options_(options), store_(path, options.store), thread_([this] { Run(); }) {}

Recorder::~Recorder() {
    Close();
}

std::uint32_t Recorder::AddController(RecordedController const& controller) {
    std::scoped_lock const lock(storeMutex_);
    return store_.AddController(controller);
}

std::uint32_t Recorder::AddReading(RecordedReading const& reading) {
    std::scoped_lock const lock(storeMutex_);
    return store_.AddReading(reading);
}

void Recorder::Push(RecordedSample&& sample) {
    if (queue_.samples.size() < options_.capacity) {
        queue_.samples.push_back(std::move(sample));
        return;
    }
    Miss(1, sample.moment.answer, sample.moment.monotonic, "the disk did not take the samples in time");
}

void Recorder::Miss(std::uint64_t count, Microseconds time, Microseconds monotonic, char const* reason) {
    RecordedGap& gap = queue_.gap;
    if (gap.count == 0) {
        gap.time = time;
        gap.monotonic = monotonic;
        gap.reason = reason;
    }
    gap.duration = std::max(gap.duration, monotonic - gap.monotonic);
    gap.count += count;
    status_.dropped += count;
}

void Recorder::NoteLoss(std::uint64_t count, Microseconds time, Microseconds monotonic) {
    std::scoped_lock const lock(mutex_);
    Miss(count, time, monotonic, "this computer did not take the samples in time");
}

void Recorder::Put(RecordedSample sample) {
    std::scoped_lock const lock(mutex_);
    Push(std::move(sample));
}

void Recorder::Put(std::vector<RecordedSample>& samples) {
    std::scoped_lock const lock(mutex_);
    for (RecordedSample& sample : samples) {
        Push(std::move(sample));
    }
    samples.clear();
}

void Recorder::Put(RecordedEvent event) {
    std::scoped_lock const lock(mutex_);
    if (queue_.events.size() < options_.capacity) {
        queue_.events.push_back(std::move(event));
    }
}

RecorderStatus Recorder::Status() const {
    std::scoped_lock const lock(mutex_);
    return status_;
}

void Recorder::Close() {
    {
        std::scoped_lock const lock(mutex_);
        isClosing_ = true;
    }
    wake_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void Recorder::Report(std::string problem) {
    std::scoped_lock const lock(mutex_);
    status_.problem = std::move(problem);
}

void Recorder::Run() {
    constexpr std::chrono::seconds LongestClose(5);
    try {
        bool isClosing = false;
        while (!isClosing) {
            {
                std::unique_lock lock(mutex_);
                wake_.wait_for(lock, options_.commitInterval, [this] { return isClosing_; });
                isClosing = isClosing_;
            }
            auto const end = std::chrono::steady_clock::now() + LongestClose;
            while (!WriteWaiting() && isClosing) {
                if (std::chrono::steady_clock::now() >= end) {
                    Report("another program held the file until the end; the last samples are missing");
                    return;
                }
            }
        }
        std::scoped_lock const lock(storeMutex_);
        store_.Close();
    } catch (std::exception const& error) {
        Report(error.what());
    }
}

// The samples stay in the queue while somebody else holds the file. Returns false then.
bool Recorder::WriteWaiting() {
    std::scoped_lock const storeLock(storeMutex_);
    try {
        if (!store_.CanWrite()) {
            return false;
        }
        store_.Begin();
    } catch (Busy const&) {
        return false;
    }
    Queue queue;
    {
        std::scoped_lock const lock(mutex_);
        std::swap(queue, queue_);
        queue_.samples.reserve(queue.samples.size());
    }
    Write(queue);
    store_.Commit();
    std::scoped_lock const lock(mutex_);
    status_.samples = store_.SampleCount();
    status_.fileBytes = store_.FileBytes();
    status_.logBytes = store_.LogBytes();
    status_.lastCommit = Now();
    return true;
}

void Recorder::Write(Queue& queue) {
    auto event = queue.events.begin();
    for (RecordedSample const& sample : queue.samples) {
        for (; event != queue.events.end() && event->monotonic <= sample.moment.monotonic; ++event) {
            store_.Put(std::move(*event));
        }
        store_.Put(sample);
    }
    for (; event != queue.events.end(); ++event) {
        store_.Put(std::move(*event));
    }
    if (queue.gap.count > 0) {
        store_.Put(std::move(queue.gap));
    }
}

} // namespace harvlink::recording
