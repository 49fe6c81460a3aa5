#include "recording/read/FrameReader.h"

#include <algorithm>
#include <limits>

#include <fmt/format.h>

#include "recording/store/Schema.h"

namespace harvlink::recording {

namespace {

constexpr int FirstValueColumn = 9;
constexpr std::int64_t RowsAtOnce = 512;

RecordedValue Decode(RecordedItem const& item, RecordedValue const& stored) {
    if (item.type == RecordedType::Real) {
        if (auto const* const parts = std::get_if<std::int64_t>(&stored)) {
            return static_cast<double>(*parts) / static_cast<double>(item.divisor);
        }
        if (std::holds_alternative<std::string>(stored)) {
            return std::numeric_limits<double>::quiet_NaN();
        }
    }
    return stored;
}

} // namespace

FrameReader::FrameReader(Database& database, Catalogue const& catalogue,
                         std::vector<std::vector<std::uint32_t>> const& readingsOfBlock)
    : catalogue_(catalogue), readingsOfBlock_(readingsOfBlock) {
    for (int const width : FrameWidths) {
        std::string const table = FrameTable(width);
        cursors_.push_back(
            {width, Statement(database, "SELECT * FROM " + table + " WHERE sequence BETWEEN ? AND ? ORDER BY sequence"),
             Statement(database, "SELECT min(sequence) FROM " + table + " WHERE sequence >= ?")});
    }
}

bool FrameReader::Read(std::int64_t first, std::int64_t last, Use const& use) {
    while (first <= last) {
        rowCount_ = 0;
        std::int64_t const end = last - first < RowsAtOnce ? last : first + RowsAtOnce - 1;
        for (Cursor& cursor : cursors_) {
            Load(cursor, first, end);
        }
        if (rowCount_ == 0) {
            // Numbers may be missing in plenty, and a damaged file may have any.
            first = NextSequence(first);
            continue;
        }
        order_.clear();
        for (std::size_t i = 0; i < rowCount_; ++i) {
            order_.push_back(&rows_[i]);
        }
        std::sort(order_.begin(), order_.end(), [](Row const* a, Row const* b) { return a->sequence < b->sequence; });
        for (Row const* const row : order_) {
            if (!Deliver(*row, use)) {
                return false;
            }
        }
        if (end == last) {
            break;
        }
        first = end + 1;
    }
    return true;
}

/// The next number from `from` on that a row has; the largest number if there is none.
std::int64_t FrameReader::NextSequence(std::int64_t from) {
    std::int64_t next = std::numeric_limits<std::int64_t>::max();
    for (Cursor& cursor : cursors_) {
        cursor.next.Bind(0, from);
        if (cursor.next.Step() && !cursor.next.IsNull(0)) {
            next = std::min(next, cursor.next.Integer(0));
        }
        cursor.next.Reset();
    }
    return next;
}

FrameReader::Row& FrameReader::NextRow() {
    if (rowCount_ == rows_.size()) {
        rows_.emplace_back();
    }
    Row& row = rows_[rowCount_++];
    row.values.clear();
    row.times.clear();
    return row;
}

void FrameReader::Load(Cursor& cursor, std::int64_t first, std::int64_t last) {
    Statement& stored = cursor.rows;
    stored.Bind(0, first);
    stored.Bind(1, last);
    while (stored.Step()) {
        Row& row = NextRow();
        row.sequence = stored.Integer(0);
        row.block = static_cast<std::uint32_t>(stored.Integer(1));
        row.time = stored.Integer(2);
        row.monotonic = stored.Integer(3);
        row.roundTrip = stored.Integer(4);
        row.isPicture = stored.Integer(5) != 0;
        row.reading = static_cast<std::uint32_t>(stored.Integer(6));
        row.quality = static_cast<RecordedQuality>(std::clamp<std::int64_t>(stored.Integer(7), 0, 3));
        row.code = static_cast<std::int32_t>(stored.Integer(8));
        // A block of another width would be a damaged file: it has no readings in these rows.
        bool const fits = row.block >= 1 && row.block <= catalogue_.blocks.size() &&
                          catalogue_.blocks[row.block - 1].width == cursor.width;
        row.block = fits ? row.block : 0;
        for (int slot = 0; fits && slot < cursor.width; ++slot) {
            if (!stored.IsNull(FirstValueColumn + slot)) {
                row.values.emplace_back(slot, stored.Value(FirstValueColumn + slot));
            }
            if (!stored.IsNull(FirstValueColumn + cursor.width + slot)) {
                row.times.emplace_back(slot, stored.Integer(FirstValueColumn + cursor.width + slot));
            }
        }
    }
    stored.Reset();
}

RecordedMoment FrameReader::MomentOf(Row const& row, int slot) const {
    RecordedMoment moment{row.quality, row.code, row.time, row.time, row.monotonic};
    auto const found =
        std::find_if(row.times.begin(), row.times.end(), [&](auto const& time) { return time.first == slot; });
    Microseconds const offset = found == row.times.end() ? 0 : found->second >> RoundTripBits;
    Microseconds const roundTrip =
        found == row.times.end() ? row.roundTrip : found->second & ((Microseconds{1} << RoundTripBits) - 1);
    // Numbers of a damaged file may be any: unsigned arithmetic wraps.
    auto const add = [](Microseconds left, Microseconds right) {
        return static_cast<Microseconds>(static_cast<std::uint64_t>(left) + static_cast<std::uint64_t>(right));
    };
    moment.request = add(row.time, offset);
    moment.answer = add(moment.request, roundTrip);
    moment.monotonic = add(add(row.monotonic, offset), add(roundTrip, -std::max<Microseconds>(row.roundTrip, -1)));
    return moment;
}

void FrameReader::TakeValues(Row const& row, std::uint32_t reading, std::size_t& position) {
    change_.values.clear();
    auto const& items = catalogue_.readings[reading - 1].items;
    int const slot = catalogue_.places[reading - 1].slot;
    int const end = slot + static_cast<int>(items.size());
    while (position < row.values.size() && row.values[position].first < slot) {
        ++position;
    }
    for (; position < row.values.size() && row.values[position].first < end; ++position) {
        int const place = row.values[position].first - slot;
        change_.values.emplace_back(place, Decode(items[static_cast<std::size_t>(place)], row.values[position].second));
    }
}

bool FrameReader::Deliver(Row const& row, Use const& use) {
    if (row.block == 0) {
        return true;
    }
    std::size_t position = 0;
    for (std::uint32_t const reading : readingsOfBlock_[row.block - 1]) {
        TakeValues(row, reading, position);
        bool const isBad = row.quality != RecordedQuality::Good && row.reading == reading;
        if (change_.values.empty() && !isBad) {
            continue;
        }
        change_.sequence = row.sequence;
        change_.isPicture = row.isPicture;
        change_.reading = reading;
        change_.moment = MomentOf(row, catalogue_.places[reading - 1].slot);
        if (!use(change_)) {
            return false;
        }
    }
    return true;
}

} // namespace harvlink::recording
