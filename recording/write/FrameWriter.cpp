#include "recording/write/FrameWriter.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "recording/store/Schema.h"

namespace harvlink::recording {

namespace {

constexpr int FirstValueColumn = 9;
constexpr Microseconds MostRoundTrip = (Microseconds{1} << RoundTripBits) - 1;
constexpr Microseconds MostSpan = 2'000'000;

Microseconds RoundTrip(RecordedMoment const& moment) {
    return std::max<Microseconds>(moment.answer - moment.request, 0);
}

/// As few bytes as the value needs: a whole number of the unit's part takes 1 to 4 bytes, any other real takes 8. What
/// SQLite can't keep as a number is a text.
RecordedValue Encode(std::int64_t divisor, RecordedValue const& value) {
    auto const* const real = std::get_if<double>(&value);
    if (real == nullptr) {
        return value;
    }
    constexpr double ExactBelow = 4e15;
    double const parts = *real * static_cast<double>(divisor);
    if (parts > -ExactBelow && parts < ExactBelow) {
        auto const number = static_cast<std::int64_t>(parts + (parts < 0 ? -0.5 : 0.5));
        double const again = static_cast<double>(number) / static_cast<double>(divisor);
        bool const isNegativeZero = number == 0 && std::signbit(parts);
        if (again == *real && !isNegativeZero) {
            return number;
        }
    }
    return std::isnan(*real) ? RecordedValue(std::string("NaN")) : value;
}

void Bind(Statement& insert, int column, RecordedValue const& value) {
    if (auto const* const integer = std::get_if<std::int64_t>(&value)) {
        insert.Bind(column, *integer);
    } else if (auto const* const real = std::get_if<double>(&value)) {
        insert.Bind(column, *real);
    } else if (auto const* const text = std::get_if<std::string>(&value)) {
        insert.Bind(column, std::string_view(*text));
    }
}

std::string InsertSql(int width) {
    std::string sql = "INSERT INTO " + FrameTable(width) + " VALUES(?";
    for (int column = 1; column < FirstValueColumn + 2 * width; ++column) {
        sql += ",?";
    }
    return sql + ")";
}

} // namespace

FrameWriter::FrameWriter(Database& database) : database_(database) {}

Statement& FrameWriter::InsertFor(int width) {
    return inserts_.try_emplace(width, database_, InsertSql(width)).first->second;
}

bool FrameWriter::Fits(OpenRow const& row, Head const& head, int slot, RecordedMoment const& moment) {
    Microseconds const offset = moment.request - row.first.request;
    return row.head.isPicture == head.isPicture && head.reading == 0 && row.head.reading == 0 && slot > row.lastSlot &&
           offset >= 0 && offset <= MostSpan && RoundTrip(moment) <= MostRoundTrip;
}

void FrameWriter::Add(Head const& head, int slot, RecordedReading const& reading, RecordedMoment const& moment,
                      Places const& changed, std::vector<RecordedValue> const& values, std::int64_t& nextSequence) {
    if (rows_.size() < head.block) {
        rows_.resize(head.block);
    }
    OpenRow& row = rows_[head.block - 1];
    if (row.sequence != 0 && !Fits(row, head, slot, moment)) {
        Write(row);
    }
    if (row.sequence == 0) {
        row.head = head;
        row.sequence = nextSequence++;
        row.first = moment;
    } else if (moment.request != row.first.request || RoundTrip(moment) != RoundTrip(row.first)) {
        row.times.emplace_back(slot, ((moment.request - row.first.request) << RoundTripBits) | RoundTrip(moment));
    }
    for (int const place : changed) {
        auto const index = static_cast<std::size_t>(place);
        row.values.emplace_back(slot + place, Encode(reading.items[index].divisor, values[index]));
    }
    row.lastSlot = slot;
}

void FrameWriter::Flush() {
    for (OpenRow& row : rows_) {
        if (row.sequence != 0) {
            Write(row);
        }
    }
}

void FrameWriter::Write(OpenRow& row) {
    Statement& insert = InsertFor(row.head.width);
    insert.Bind(0, row.sequence); // Run has left it without bindings
    insert.Bind(1, std::int64_t{row.head.block});
    insert.Bind(2, row.first.request);
    insert.Bind(3, row.first.monotonic);
    insert.Bind(4, RoundTrip(row.first));
    insert.Bind(5, std::int64_t{row.head.isPicture ? 1 : 0});
    if (row.head.reading != 0) {
        insert.Bind(6, std::int64_t{row.head.reading});
    }
    insert.Bind(7, static_cast<std::int64_t>(row.first.quality));
    insert.Bind(8, std::int64_t{row.first.code});
    for (auto const& [slot, value] : row.values) {
        Bind(insert, FirstValueColumn + slot, value);
    }
    for (auto const& [slot, time] : row.times) {
        insert.Bind(FirstValueColumn + row.head.width + slot, time);
    }
    insert.Run();
    row.values.clear();
    row.times.clear();
    row.sequence = 0;
    row.lastSlot = -1;
}

} // namespace harvlink::recording
