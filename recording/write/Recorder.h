#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "recording/write/SampleStore.h"

namespace harvlink::recording {

struct RecorderOptions {
    StoreOptions store{};
    std::chrono::milliseconds commitInterval{500};
    std::size_t capacity = 1U << 18; ///< samples that wait while the disk stalls; what comes beyond makes a gap
};

struct RecorderStatus {
    std::uint64_t samples = 0; ///< written
    std::uint64_t dropped = 0; ///< missing for want of room; gaps of the recording name them
    std::uint64_t fileBytes = 0;
    std::uint64_t logBytes = 0; ///< of the write-ahead log beside the file
    Microseconds lastCommit = 0; ///< UTC; 0: none yet
    std::string problem; ///< why recording has ended; empty while it goes on
};

/// Writes a recording from a thread of its own: whoever brings samples never waits for the disk. All operations may be called
/// from any thread.
class Recorder {
public:
    /// Throws RecordingError; Busy if another recorder has the file.
    explicit Recorder(std::filesystem::path const& path, RecorderOptions const& options = {});
    Recorder(Recorder const&) = delete;
    Recorder& operator=(Recorder const&) = delete;
    /// Closes.
    ~Recorder();

    /// The id under which samples name it. These two may wait for a running commit.
    std::uint32_t AddController(RecordedController const& controller);
    std::uint32_t AddReading(RecordedReading const& reading);

    /// Never wait for the disk.
    void Put(RecordedSample sample);
    void Put(std::vector<RecordedSample>& samples); ///< takes them out
    void Put(RecordedEvent event);

    /// Says that so many samples were lost before they came here.
    void NoteLoss(std::uint64_t count, Microseconds time, Microseconds monotonic);

    RecorderStatus Status() const;

    /// Writes what waits and ends the recording. Waits at most five seconds for somebody who holds the file.
    void Close();

private:
    struct Queue {
        std::vector<RecordedSample> samples;
        std::vector<RecordedEvent> events;
        RecordedGap gap{};
    };

    void Run();
    bool WriteWaiting();
    void Write(Queue& queue);
    void Push(RecordedSample&& sample);
    void Miss(std::uint64_t count, Microseconds time, Microseconds monotonic, char const* reason);
    void Report(std::string problem);

    RecorderOptions options_;
    mutable std::mutex storeMutex_; ///< before mutex_
    SampleStore store_;
    mutable std::mutex mutex_;
    std::condition_variable wake_;
    Queue queue_;
    RecorderStatus status_;
    bool isClosing_ = false;
    std::thread thread_;
};

} // namespace harvlink::recording
