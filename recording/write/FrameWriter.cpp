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

bool FrameWriter::Fits(Frame const& frame, Head const& head, int slot, RecordedMoment const& moment) {
    Microseconds const offset = moment.request - frame.first.request;
    return frame.head.isPicture == head.isPicture && head.reading == 0 && frame.head.reading == 0 &&
           slot > frame.lastSlot && offset >= 0 && offset <= MostSpan && RoundTrip(moment) <= MostRoundTrip;
}

void FrameWriter::Add(Head const& head, int slot, RecordedReading const& reading, RecordedMoment const& moment,
                      Places const& changed, std::vector<RecordedValue> const& values, std::int64_t& nextSequence) {
    if (frames_.size() < head.block) {
        frames_.resize(head.block);
    }
    Frame& frame = frames_[head.block - 1];
    if (frame.sequence != 0 && !Fits(frame, head, slot, moment)) {
        Write(frame);
    }
    if (frame.sequence == 0) {
        frame.head = head;
        frame.sequence = nextSequence++;
        frame.first = moment;
    } else if (moment.request != frame.first.request || RoundTrip(moment) != RoundTrip(frame.first)) {
        frame.times.emplace_back(slot, ((moment.request - frame.first.request) << RoundTripBits) | RoundTrip(moment));
    }
    for (int const place : changed) {
        auto const index = static_cast<std::size_t>(place);
        frame.values.emplace_back(slot + place, Encode(reading.items[index].divisor, values[index]));
    }
    frame.lastSlot = slot;
}

void FrameWriter::Flush() {
    for (Frame& frame : frames_) {
        if (frame.sequence != 0) {
            Write(frame);
        }
    }
}

void FrameWriter::Write(Frame& frame) {
    Statement& insert = InsertFor(frame.head.width);
    insert.Bind(0, frame.sequence); // Run has left it without bindings
    insert.Bind(1, std::int64_t{frame.head.block});
    insert.Bind(2, frame.first.request);
    insert.Bind(3, frame.first.monotonic);
    insert.Bind(4, RoundTrip(frame.first));
    insert.Bind(5, std::int64_t{frame.head.isPicture ? 1 : 0});
    if (frame.head.reading != 0) {
        insert.Bind(6, std::int64_t{frame.head.reading});
    }
    insert.Bind(7, static_cast<std::int64_t>(frame.first.quality));
    insert.Bind(8, std::int64_t{frame.first.code});
    for (auto const& [slot, value] : frame.values) {
        Bind(insert, FirstValueColumn + slot, value);
    }
    for (auto const& [slot, time] : frame.times) {
        insert.Bind(FirstValueColumn + frame.head.width + slot, time);
    }
    insert.Run();
    frame.values.clear();
    frame.times.clear();
    frame.sequence = 0;
    frame.lastSlot = -1;
}

} // namespace harvlink::recording
