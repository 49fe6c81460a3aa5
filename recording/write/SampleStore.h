#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "recording/model/Records.h"
#include "recording/store/Database.h"
#include "recording/store/FileLock.h"
#include "recording/write/FrameWriter.h"
#include "recording/write/Layout.h"

namespace harvlink::recording {

struct StoreOptions {
    std::chrono::microseconds keep{0}; ///< drops what is older, in whole segments; 0: no limit
    std::uint64_t maxBytes = 0; ///< of the file; the oldest goes first, in whole segments; 0: no limit
    std::uint64_t maxLogBytes = 256ULL << 20; ///< of the write-ahead log, see CanWrite
};

/// Writes a recording, on one thread. Values that did not change are stored once. A segment is a part of the recording that
/// can be read without the ones before it, because it begins with a full picture; a recording begins one each time that it
/// is opened, when the clock was set back, and from time to time.
///
/// All operations throw RecordingError; after one, but Busy from Begin, only destruction is left. What was committed is safe.
class SampleStore {
public:
    /// Opens a recording to go on with it, or makes a new one.
    explicit SampleStore(std::filesystem::path const& path, StoreOptions const& options = {});
    SampleStore(SampleStore const&) = delete;
    SampleStore& operator=(SampleStore const&) = delete;
    ~SampleStore();

    std::uint32_t AddController(RecordedController const& controller) { return layout_.AddController(controller); }
    std::uint32_t AddReading(RecordedReading const& reading);

    /// Whether the log has room. Somebody who reads for long within one transaction keeps SQLite from emptying it; then
    /// writing has to wait, or the log would fill the disk.
    bool CanWrite();

    /// Begins a transaction. Throws Busy if somebody else writes to the file; it may be called again.
    void Begin();

    /// Takes a sample as known without writing it, as of a time before the recording.
    void Know(RecordedSample const& sample);

    /// Within a transaction: begins a segment at a time, with a full picture of what is known.
    void StartAt(Microseconds time, Microseconds monotonic);

    /// Within a transaction. Monotonic times may begin anywhere; in the file they go on from where it ended.
    void Put(RecordedSample const& sample);
    void Put(RecordedEvent event);
    void Put(RecordedGap gap);

    void Commit();

    /// Ends the recording: afterwards it is a single file, unless somebody reads it. What it returns keeps others from taking
    /// the file for finished as long as it lives.
    std::unique_ptr<FileLock> Close();

    std::uint64_t FileBytes() const;
    std::uint64_t LogBytes() const;
    std::uint64_t SampleCount() const { return samples_; }

private:
    struct Known {
        std::vector<RecordedValue> values;
        RecordedMoment moment{.quality = RecordedQuality::NeverRead};
    };
    struct Segment {
        std::int64_t id = 0; ///< 0: none has begun
        std::int64_t firstSequence = 0;
        Microseconds begin = 0;
        Microseconds end = 0;
        Microseconds beginMonotonic = 0;
        Microseconds endMonotonic = 0;
        std::int64_t samples = 0;
        std::int64_t values = 0;
        std::int64_t events = 0;
        std::int64_t gaps = 0;
        std::int64_t missing = 0;
        std::uint64_t bytesBefore = 0;
    };

    void LoadEnd();
    Microseconds ToFileTime(Microseconds monotonic, Microseconds utc);
    void Note(Microseconds utc, Microseconds monotonic);
    void BeginSegment(Microseconds utc, Microseconds monotonic);
    void PutPicture(Microseconds utc, Microseconds monotonic);
    void PutChanged(std::uint32_t reading, RecordedMoment const& moment, FrameWriter::Places const& changed,
                    bool isPicture);
    void UpdateSegment();
    bool IsSegmentFull();
    void DropOldest();
    bool IsOverLimit(Microseconds oldestEnd);
    std::uint64_t UsedBytes();
    std::uint64_t SegmentBytes() const;

    StoreOptions options_;
    std::unique_ptr<FileLock> lock_;
    Database database_;
    Layout layout_;
    FrameWriter frames_;
    std::vector<Known> known_; ///< by reading
    Segment segment_;
    std::int64_t nextSequence_ = 1;
    std::optional<Microseconds> monotonicOffset_;
    Microseconds lastTime_ = 0; ///< of the file, before this opening
    Microseconds lastMonotonic_ = 0;
    std::uint64_t samples_ = 0;
    FrameWriter::Places changed_; ///< kept for its memory
};

} // namespace harvlink::recording
