#include "recording/read/Recording.h"

#include <algorithm>
#include <system_error>

#include <fmt/format.h>

#include "recording/read/FrameReader.h"
#include "recording/store/Schema.h"
#include "words/text/Path.h"

namespace harvlink::recording {

using words::Beside;
using words::TextOf;

namespace {

std::uint64_t SizeOf(std::filesystem::path const& path) {
    std::error_code error;
    auto const size = std::filesystem::file_size(path, error);
    return error ? 0 : size;
}

/// SQLite makes files beside a recording even to read it. In a folder that can't be written, a recording that was ended
/// well is read without them.
Database OpenForReading(std::filesystem::path const& path) {
    if (!std::filesystem::is_regular_file(path)) {
        throw RecordingError(fmt::format("{}: there is no such file", TextOf(path)));
    }
    Database database(path, Database::Access::Read);
    database.Run("PRAGMA busy_timeout = 2000");
    try {
        CheckSchema(database);
    } catch (RecordingError const&) {
        if (SizeOf(Beside(path, "-wal")) != 0) {
            throw;
        }
        Database immutable(path, Database::Access::ReadImmutable);
        CheckSchema(immutable);
        return immutable;
    }
    return database;
}

} // namespace

Recording::Recording(std::filesystem::path const& path)
    : database_(OpenForReading(path)), catalogue_(database_), readingsOfBlock_(catalogue_.blocks.size()) {
    for (std::size_t i = 0; i < catalogue_.places.size(); ++i) {
        readingsOfBlock_[catalogue_.places[i].block - 1].push_back(static_cast<std::uint32_t>(i + 1));
    }
    for (auto& readings : readingsOfBlock_) {
        std::sort(readings.begin(), readings.end(), [this](std::uint32_t a, std::uint32_t b) {
            return catalogue_.places[a - 1].slot < catalogue_.places[b - 1].slot;
        });
    }
}

RecordingInfo Recording::Info() {
    RecordingInfo info;
    info.version = database_.Number("PRAGMA user_version");
    info.fileBytes = SizeOf(database_.Path());
    info.logBytes = SizeOf(Beside(database_.Path(), "-wal"));
    Statement sums(database_, "SELECT count(*), min(begin_us), max(end_us), total(samples), total(item_values), "
                              "total(events), total(gaps), total(missing), max(end_monotonic_us) FROM segments");
    if (sums.Step()) {
        info.segments = sums.Integer(0);
        info.begin = sums.Integer(1);
        info.end = sums.Integer(2);
        info.samples = sums.Integer(3);
        info.values = sums.Integer(4);
        info.events = sums.Integer(5);
        info.gaps = sums.Integer(6);
        info.missing = sums.Integer(7);
        info.endMonotonic = sums.Integer(8);
    }
    return info;
}

std::vector<Recording::Span> Recording::SegmentsOf(TimeRange const& range) {
    std::vector<Span> spans;
    Statement segments(database_,
                       "SELECT first_sequence, last_sequence FROM segments WHERE begin_us < ? AND end_us >= ? "
                       "ORDER BY id");
    segments.Bind(0, range.end);
    segments.Bind(1, range.begin);
    while (segments.Step()) {
        spans.push_back({segments.Integer(0), segments.Integer(1)});
    }
    return spans;
}

void Recording::ForEachChange(TimeRange const& range, bool withState, std::function<bool(Change const&)> const& use) {
    FrameReader reader(database_, catalogue_, readingsOfBlock_);
    std::vector<Span> spans = SegmentsOf(range);
    if (withState) {
        // A range may begin between two segments; the state is then what the one before it ended with.
        Statement before(database_,
                         "SELECT first_sequence, last_sequence FROM segments WHERE begin_us <= ? AND end_us < ? "
                         "ORDER BY id DESC LIMIT 1");
        before.Bind(0, range.begin);
        before.Bind(1, range.begin);
        Microseconds const none = std::numeric_limits<Microseconds>::min();
        if (range.begin != none && before.Step() && (spans.empty() || before.Integer(0) < spans.front().first)) {
            spans.insert(spans.begin(), {before.Integer(0), before.Integer(1)});
        }
    }
    for (Span const& span : spans) {
        bool const goesOn = reader.Read(span.first, span.last, [&](Change const& change) {
            bool const isInRange =
                change.moment.answer < range.end && (withState || change.moment.answer >= range.begin);
            return !isInRange || use(change);
        });
        if (!goesOn) {
            return;
        }
    }
}

std::int64_t Recording::ReadSome(std::int64_t sequence, std::vector<Change>& changes) {
    constexpr std::int64_t Rows = 512;
    FrameReader reader(database_, catalogue_, readingsOfBlock_);
    std::int64_t const last = database_.Number("SELECT max(last_sequence) FROM segments");
    if (sequence > last) {
        return 0;
    }
    std::int64_t const end = last - sequence < Rows ? last : sequence + Rows - 1;
    reader.Read(sequence, end, [&](Change const& change) {
        changes.push_back(change);
        return true;
    });
    return end == last ? 0 : end + 1;
}

Recording::Moment Recording::Find(Microseconds time) {
    Statement segment(database_,
                      "SELECT begin_us, end_us, begin_monotonic_us, end_monotonic_us, first_sequence FROM segments "
                      "ORDER BY begin_us <= ?1 DESC, abs(begin_us - ?1) LIMIT 1");
    segment.Bind(0, time);
    if (!segment.Step()) {
        return {};
    }
    Microseconds const offset =
        std::clamp(time, segment.Integer(0), std::max(segment.Integer(0), segment.Integer(1))) - segment.Integer(0);
    return {segment.Integer(2) + offset, segment.Integer(4)};
}

void Recording::ForEachEvent(TimeRange const& range, Order order, std::function<bool(StoredEvent&&)> const& use) {
    Statement row(
        database_,
        fmt::format("SELECT sequence, utc_us, monotonic_us, controller, kind, before, after, code, text, card "
                    "FROM events WHERE utc_us >= ? AND utc_us < ? ORDER BY sequence {}",
                    order == Order::NewestFirst ? "DESC" : "ASC"));
    row.Bind(0, range.begin);
    row.Bind(1, range.end);
    while (row.Step()) {
        auto const controller = row.Integer(3);
        if (controller < 1 || controller > static_cast<std::int64_t>(catalogue_.controllers.size())) {
            continue;
        }
        StoredEvent event{row.Integer(0),
                          {row.Integer(1), row.Integer(2), static_cast<std::uint32_t>(controller), row.Text(4),
                           row.Integer(5), row.Integer(6), static_cast<std::int32_t>(row.Integer(7)), row.Text(8),
                           row.Text(9)}};
        if (!use(std::move(event))) {
            return;
        }
    }
}

std::vector<StoredEvent> Recording::Events(TimeRange const& range) {
    std::vector<StoredEvent> events;
    ForEachEvent(range, Order::OldestFirst, [&](StoredEvent&& event) {
        events.push_back(std::move(event));
        return true;
    });
    return events;
}

/// A segment begins where the one before it ended, unless nobody wrote in between.
std::vector<TimeRange> Recording::Pauses() {
    std::vector<TimeRange> pauses;
    Statement row(database_, "SELECT begin_us, end_us FROM segments ORDER BY id");
    Microseconds end = std::numeric_limits<Microseconds>::max();
    while (row.Step()) {
        if (row.Integer(0) > end) {
            pauses.push_back({end, row.Integer(0)});
        }
        end = row.Integer(1);
    }
    return pauses;
}

std::vector<StoredGap> Recording::Gaps(TimeRange const& range) {
    std::vector<StoredGap> gaps;
    Statement row(database_,
                  "SELECT sequence, utc_us, monotonic_us, duration_us, count, reason FROM gaps WHERE utc_us >= ? "
                  "AND utc_us < ? ORDER BY sequence");
    row.Bind(0, range.begin);
    row.Bind(1, range.end);
    while (row.Step()) {
        gaps.push_back({row.Integer(0),
                        {row.Integer(1), row.Integer(2), row.Integer(3), static_cast<std::uint64_t>(row.Integer(4)),
                         row.Text(5)}});
    }
    return gaps;
}

} // namespace harvlink::recording
