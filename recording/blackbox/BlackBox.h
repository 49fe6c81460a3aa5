#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "recording/blackbox/RingFile.h"
#include "recording/write/SampleStore.h"

namespace harvlink::recording {

struct BlackBoxOptions {
    std::filesystem::path folder = "."; ///< for the files of incidents
    std::chrono::microseconds before{60'000'000};
    std::chrono::microseconds after{10'000'000};
    std::vector<std::string> on{"alarm-raised", "silent", "servo-off"}; ///< kinds of events that are incidents
    std::chrono::milliseconds writeInterval{500};
    /// Samples in memory, of all controllers. The oldest go first; an incident that misses them has a gap.
    std::size_t capacity = 1U << 22;
    /// A recording that holds the time before instead of the memory; it outlasts a cut of power. Empty: in memory.
    std::filesystem::path ringFile{};
};

struct BlackBoxStatus {
    std::size_t samples = 0; ///< in memory
    std::uint64_t dropped = 0; ///< missing for want of room; gaps of the incidents name them
    std::vector<std::filesystem::path> incidents; ///< files written or begun
    std::string problem; ///< why writing has ended; empty while it goes on
};

/// Keeps the last minute of each controller in memory or in a file, and writes it into a file when something happens: that minute, and
/// what comes in the time after. An event within that time makes it longer: the incidents share a file without a hole. Files
/// are named by controller, time and event, such as press1-20261122T031500Z-alarm-4107.harvlink. All operations may be called
/// from any thread; Put never waits for the disk.
class BlackBox {
public:
    /// Throws RecordingError if the file can't be written.
    explicit BlackBox(BlackBoxOptions options = {});
    BlackBox(BlackBox const&) = delete;
    BlackBox& operator=(BlackBox const&) = delete;
    /// Closes.
    ~BlackBox();

    std::uint32_t AddController(RecordedController const& controller);
    std::uint32_t AddReading(RecordedReading const& reading);
    void Put(RecordedSample sample);
    void Put(RecordedEvent event);

    /// Says that so many samples of all controllers were lost before they came here.
    void NoteLoss(std::uint64_t count, Microseconds time, Microseconds monotonic);

    BlackBoxStatus Status() const;

    /// Writes what belongs to open incidents and ends.
    void Close();

private:
    struct Ring;
    struct Entry {
        Microseconds monotonic = 0;
        std::uint32_t controller = 0;
        std::variant<RecordedSample, RecordedEvent, RecordedGap> what;
    };

    void Run();
    bool IsFull() const { return waiting_.size() >= options_.capacity; }
    void Miss(std::uint32_t controller, std::uint64_t count, Microseconds time, Microseconds monotonic);
    void Take(Entry entry);
    void Keep(Ring& ring, Entry entry);
    bool IsIncident(Entry const& entry) const;
    void Begin(Ring& ring, RecordedEvent const& event);
    void AddContents(Ring& ring);
    void WriteTimeBefore(Ring& ring, RecordedEvent const& event);
    void Write(Ring& ring, Entry const& entry);
    void End(Ring& ring);
    void Rename(Ring& ring);
    void CommitOpen();
    void Forget(Ring& ring, Microseconds now);
    Ring& RingOf(std::uint32_t controller);
    RecordedReading ReadingOf(std::uint32_t id) const;
    std::filesystem::path NameFor(Ring const& ring, RecordedEvent const& event) const;

    BlackBoxOptions options_;
    mutable std::mutex mutex_;
    std::condition_variable wake_;
    std::vector<RecordedController>
        controllers_; ///< with the readings and what follows up to `status_`, under the mutex
    std::vector<RecordedReading> readings_;
    std::deque<Entry> waiting_;
    std::map<std::uint32_t, RecordedGap> gaps_; ///< what did not fit there, by controller
    BlackBoxStatus status_;
    bool isClosing_ = false;
    std::unique_ptr<RingFile> file_; ///< null: in memory. With the rings the thread's own
    std::map<std::uint32_t, std::unique_ptr<Ring>> rings_; ///< by controller
    std::thread thread_;
};

} // namespace harvlink::recording
