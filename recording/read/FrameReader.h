#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "recording/read/Recording.h"
#include "recording/store/Database.h"

namespace harvlink::recording {

/// Reads the rows of all tables of rows in the order of their numbers, some hundred at a time.
class FrameReader {
public:
    using Use = std::function<bool(Change const&)>;

    FrameReader(Database& database, Catalogue const& catalogue,
                std::vector<std::vector<std::uint32_t>> const& readingsOfBlock);

    /// Calls `use` for each change from row `first` to `last`. False if `use` ended it.
    bool Read(std::int64_t first, std::int64_t last, Use const& use);

private:
    struct Row {
        std::int64_t sequence = 0;
        std::uint32_t block = 0;
        Microseconds time = 0;
        Microseconds monotonic = 0;
        Microseconds roundTrip = 0;
        bool isPicture = false;
        std::uint32_t reading = 0;
        RecordedQuality quality = RecordedQuality::Good;
        std::int32_t code = 0;
        std::vector<std::pair<int, RecordedValue>> values; ///< by slot
        std::vector<std::pair<int, std::int64_t>> times;
    };
    struct Cursor {
        int width;
        Statement rows;
        Statement next;
    };

    void Load(Cursor& cursor, std::int64_t first, std::int64_t last);
    Row& NextRow();
    std::int64_t NextSequence(std::int64_t from);
    bool Deliver(Row const& row, Use const& use);
    RecordedMoment MomentOf(Row const& row, int slot) const;
    void TakeValues(Row const& row, std::uint32_t reading, std::size_t& position);

    Catalogue const& catalogue_;
    std::vector<std::vector<std::uint32_t>> const& readingsOfBlock_;
    std::vector<Cursor> cursors_;
    std::vector<Row> rows_; ///< kept for their memory
    std::size_t rowCount_ = 0;
    std::vector<Row const*> order_;
    Change change_;
};

} // namespace harvlink::recording
