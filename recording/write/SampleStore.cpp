#include "recording/write/SampleStore.h"

#include <algorithm>
#include <bit>
#include <system_error>

#include <fmt/format.h>

#include "recording/store/Schema.h"
#include "words/text/Path.h"

namespace harvlink::recording {

namespace {

// The oldest samples are dropped by whole segments, and each begins with a picture of all values: so a file has enough of them
// to lose little at a time, and not so many that it is full of pictures.
constexpr std::uint64_t LeastSegment = 256ULL << 10;
constexpr std::uint64_t MostSegment = 64ULL << 20;
constexpr std::uint64_t SegmentsOfFile = 16;
constexpr Microseconds LongestSegment = 600'000'000;
constexpr Microseconds SetBack = 1'000'000; ///< smaller steps back are the corrections that a clock makes by itself
constexpr std::int64_t LogSizeLimit = 4 << 20; ///< to which the log shrinks when it is empty

/// Takes over a value. Returns whether it has changed: a different zero or another NaN has, as the file must give back what
/// came.
bool Take(RecordedValue& known, RecordedValue const& value) {
    auto* const number = std::get_if<double>(&known);
    auto const* const real = std::get_if<double>(&value);
    if (number != nullptr && real != nullptr) {
        bool const isSame = std::bit_cast<std::uint64_t>(*number) == std::bit_cast<std::uint64_t>(*real);
        *number = *real;
        return !isSame;
    }
    if (known == value) {
        return false;
    }
    known = value;
    return true;
}

std::uint64_t SizeOf(std::filesystem::path const& path) {
    std::error_code error;
    auto const size = std::filesystem::file_size(path, error);
    return error ? 0 : size;
}

} // namespace

SampleStore::SampleStore(std::filesystem::path const& path, StoreOptions const& options)
    : options_(options),
      lock_(std::make_unique<FileLock>(path)),
      database_(path, Database::Access::Write),
      layout_([this]() -> Database& {
          constexpr char const* Settings =
              "PRAGMA busy_timeout = 200; PRAGMA synchronous = NORMAL; PRAGMA foreign_keys = OFF;";
          database_.Run(Settings);
          database_.Number("PRAGMA journal_mode = WAL");
          database_.Run(fmt::format("PRAGMA journal_size_limit = {}", LogSizeLimit));
          PrepareSchema(database_);
          return database_;
      }()),
      frames_(database_) {
    LoadEnd();
}

SampleStore::~SampleStore() = default;

void SampleStore::LoadEnd() {
    Statement last(database_,
                   "SELECT id, last_sequence, end_us, end_monotonic_us FROM segments ORDER BY id DESC LIMIT 1");
    if (last.Step()) {
        segment_.id = last.Integer(0);
        nextSequence_ = last.Integer(1) + 1;
        lastTime_ = last.Integer(2);
        lastMonotonic_ = last.Integer(3);
    }
    known_.resize(layout_.Readings().size());
}

std::uint32_t SampleStore::AddReading(RecordedReading const& reading) {
    auto const id = layout_.AddReading(reading);
    known_.resize(layout_.Readings().size());
    return id;
}

bool SampleStore::CanWrite() {
    if (LogBytes() <= options_.maxLogBytes) {
        return true;
    }
    // The first column says whether a reader was in the way.
    return database_.Number("PRAGMA wal_checkpoint(TRUNCATE)") == 0;
}

void SampleStore::Begin() {
    database_.Run("BEGIN IMMEDIATE");
    layout_.Store();
}

void SampleStore::Know(RecordedSample const& sample) {
    if (sample.reading >= 1 && sample.reading <= known_.size()) {
        known_[sample.reading - 1] = {sample.values, sample.moment};
    }
}

void SampleStore::StartAt(Microseconds time, Microseconds monotonic) {
    layout_.Store();
    BeginSegment(time, ToFileTime(monotonic, time));
}

Microseconds SampleStore::ToFileTime(Microseconds monotonic, Microseconds utc) {
    if (!monotonicOffset_) {
        Microseconds const pause = lastTime_ == 0 ? 0 : std::max<Microseconds>(utc - lastTime_, 0);
        monotonicOffset_ = lastMonotonic_ + pause - monotonic;
    }
    return monotonic + *monotonicOffset_;
}

void SampleStore::Note(Microseconds utc, Microseconds monotonic) {
    if (!layout_.IsStored()) { // a new segment needs the places of all readings
        layout_.Store();
    }
    if (segment_.begin == 0 || utc < segment_.end - SetBack) {
        BeginSegment(utc, monotonic);
    }
    segment_.end = std::max(segment_.end, utc);
    segment_.endMonotonic = std::max(segment_.endMonotonic, monotonic);
}

void SampleStore::BeginSegment(Microseconds utc, Microseconds monotonic) {
    frames_.Flush();
    if (segment_.begin != 0) {
        UpdateSegment();
    }
    segment_ = {.id = segment_.id + 1,
                .firstSequence = nextSequence_,
                .begin = utc,
                .end = utc,
                .beginMonotonic = monotonic,
                .endMonotonic = monotonic,
                .bytesBefore = UsedBytes()};
    Statement insert(database_, "INSERT INTO segments VALUES(?, ?, ?, ?, ?, ?, ?, 0, 0, 0, 0, 0)");
    int column = 0;
    for (std::int64_t const number :
         {segment_.id, segment_.firstSequence, segment_.firstSequence, utc, utc, monotonic, monotonic}) {
        insert.Bind(column++, number);
    }
    insert.Run();
    PutPicture(utc, monotonic);
}

void SampleStore::PutPicture(Microseconds utc, Microseconds monotonic) {
    for (std::uint32_t reading = 1; reading <= known_.size(); ++reading) {
        Known const& known = known_[reading - 1];
        RecordedMoment moment{.request = utc, .answer = utc, .monotonic = monotonic};
        changed_.clear();
        for (std::size_t i = 0; i < known.values.size(); ++i) {
            changed_.push_back(static_cast<int>(i));
        }
        if (!changed_.empty()) {
            PutChanged(reading, moment, changed_, true);
        }
    }
    // Only now: a quality that is not good takes a row for its reading alone, and would break up the rows of the values.
    for (std::uint32_t reading = 1; reading <= known_.size(); ++reading) {
        RecordedMoment moment = known_[reading - 1].moment;
        if (moment.quality != RecordedQuality::Good && moment.quality != RecordedQuality::NeverRead) {
            moment.request = moment.answer = utc;
            moment.monotonic = monotonic;
            PutChanged(reading, moment, {}, true);
        }
    }
    frames_.Flush();
}

void SampleStore::PutChanged(std::uint32_t reading, RecordedMoment const& moment, FrameWriter::Places const& changed,
                             bool isPicture) {
    Place const& place = layout_.PlaceOf(reading);
    bool const isGood = moment.quality == RecordedQuality::Good;
    frames_.Add({place.block, layout_.BlockOf(place.block).width, isPicture, isGood ? 0 : reading}, place.slot,
                layout_.Readings()[reading - 1], moment, changed, known_[reading - 1].values, nextSequence_);
}

void SampleStore::Put(RecordedSample const& sample) {
    if (sample.reading == 0 || sample.reading > known_.size() || sample.moment.quality == RecordedQuality::NeverRead) {
        return;
    }
    RecordedMoment moment = sample.moment;
    moment.monotonic = ToFileTime(moment.monotonic, moment.answer);
    Note(moment.answer, moment.monotonic);
    Known& known = known_[sample.reading - 1];
    bool const wasGood = known.moment.quality == RecordedQuality::Good;
    bool const sameWorth = known.moment.quality == moment.quality && known.moment.code == moment.code;
    known.moment = moment;
    ++samples_;
    ++segment_.samples;
    if (moment.quality != RecordedQuality::Good) {
        if (!sameWorth) {
            PutChanged(sample.reading, moment, {}, false);
        }
        return;
    }
    auto const count = std::min(sample.values.size(), layout_.Readings()[sample.reading - 1].items.size());
    known.values.resize(count);
    changed_.clear();
    for (std::size_t i = 0; i < count; ++i) {
        if (Take(known.values[i], sample.values[i]) || !wasGood) {
            changed_.push_back(static_cast<int>(i));
        }
    }
    segment_.values += static_cast<std::int64_t>(changed_.size());
    if (!changed_.empty()) {
        PutChanged(sample.reading, moment, changed_, false);
    }
}

void SampleStore::Put(RecordedEvent event) {
    event.monotonic = ToFileTime(event.monotonic, event.time);
    Note(event.time, event.monotonic);
    Statement insert(database_, "INSERT INTO events VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    insert.Bind(0, nextSequence_++);
    insert.Bind(1, event.time);
    insert.Bind(2, event.monotonic);
    insert.Bind(3, std::int64_t{event.controller});
    insert.Bind(4, event.kind);
    insert.Bind(5, event.before);
    insert.Bind(6, event.after);
    insert.Bind(7, std::int64_t{event.code});
    insert.Bind(8, event.text);
    insert.Bind(9, event.card);
    insert.Run();
    ++segment_.events;
}

void SampleStore::Put(RecordedGap gap) {
    gap.monotonic = ToFileTime(gap.monotonic, gap.time);
    Note(gap.time, gap.monotonic);
    Statement insert(database_, "INSERT INTO gaps VALUES(?, ?, ?, ?, ?, ?)");
    insert.Bind(0, nextSequence_++);
    insert.Bind(1, gap.time);
    insert.Bind(2, gap.monotonic);
    insert.Bind(3, gap.duration);
    insert.Bind(4, static_cast<std::int64_t>(gap.count));
    insert.Bind(5, gap.reason);
    insert.Run();
    ++segment_.gaps;
    segment_.missing += static_cast<std::int64_t>(gap.count);
}

void SampleStore::UpdateSegment() {
    Statement update(database_, "UPDATE segments SET last_sequence = ?, end_us = ?, end_monotonic_us = ?, samples = ?, "
                                "item_values = ?, events = ?, gaps = ?, missing = ? WHERE id = ?");
    int column = 0;
    for (std::int64_t const number : {nextSequence_ - 1, segment_.end, segment_.endMonotonic, segment_.samples,
                                      segment_.values, segment_.events, segment_.gaps, segment_.missing, segment_.id}) {
        update.Bind(column++, number);
    }
    update.Run();
}

void SampleStore::Commit() {
    layout_.Store();
    frames_.Flush();
    if (segment_.begin != 0) {
        UpdateSegment();
        DropOldest();
        if (IsSegmentFull()) {
            BeginSegment(segment_.end, segment_.endMonotonic);
            UpdateSegment();
        }
    }
    database_.Run("COMMIT");
}

/// The file itself never shrinks: the pages of what was dropped are used again.
std::uint64_t SampleStore::UsedBytes() {
    return static_cast<std::uint64_t>(
        (database_.Number("PRAGMA page_count") - database_.Number("PRAGMA freelist_count")) *
        database_.Number("PRAGMA page_size"));
}

std::uint64_t SampleStore::SegmentBytes() const {
    return options_.maxBytes == 0 ? MostSegment
                                  : std::clamp(options_.maxBytes / SegmentsOfFile, LeastSegment, MostSegment);
}

bool SampleStore::IsSegmentFull() {
    Microseconds const keep = options_.keep.count();
    Microseconds const longest = keep == 0 ? LongestSegment : std::min(LongestSegment, keep / 8);
    auto const used = UsedBytes();
    return segment_.endMonotonic - segment_.beginMonotonic >= longest || used >= segment_.bytesBefore + SegmentBytes();
}

bool SampleStore::IsOverLimit(Microseconds oldestEnd) {
    bool const isOld = options_.keep.count() != 0 && oldestEnd < segment_.endMonotonic - options_.keep.count();
    return isOld || (options_.maxBytes != 0 && UsedBytes() + SegmentBytes() > options_.maxBytes);
}

void SampleStore::DropOldest() {
    if (options_.keep.count() == 0 && options_.maxBytes == 0) {
        return;
    }
    for (;;) {
        Statement oldest(database_, "SELECT id, last_sequence, end_monotonic_us FROM segments ORDER BY id LIMIT 1");
        if (!oldest.Step() || oldest.Integer(0) == segment_.id || !IsOverLimit(oldest.Integer(2))) {
            return;
        }
        auto const bytes = UsedBytes();
        auto const last = oldest.Integer(1);
        auto const id = oldest.Integer(0);
        oldest.Reset();
        for (int const width : FrameWidths) {
            database_.Run(fmt::format("DELETE FROM {} WHERE sequence <= {}", FrameTable(width), last));
        }
        database_.Run(fmt::format("DELETE FROM events WHERE sequence <= {0}; DELETE FROM gaps WHERE sequence <= {0}; "
                                  "DELETE FROM segments WHERE id = {1}",
                                  last, id));
        segment_.bytesBefore -= std::min(segment_.bytesBefore, bytes - std::min(bytes, UsedBytes()));
    }
}

std::unique_ptr<FileLock> SampleStore::Close() {
    // Both fail while somebody reads, and then the log stays beside the file.
    try {
        database_.Number("PRAGMA wal_checkpoint(TRUNCATE)");
        database_.Number("PRAGMA journal_mode = DELETE");
    } catch (Busy const&) {
        // The log stays, and whoever reads the recording next takes it in.
    }
    return std::move(lock_);
}

std::uint64_t SampleStore::FileBytes() const {
    return SizeOf(database_.Path());
}

std::uint64_t SampleStore::LogBytes() const {
    return SizeOf(words::Beside(database_.Path(), "-wal"));
}

} // namespace harvlink::recording
