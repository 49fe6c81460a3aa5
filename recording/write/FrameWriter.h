#pragma once

#include <map>
#include <utility>
#include <vector>

#include "recording/model/Records.h"
#include "recording/store/Catalogue.h"

namespace harvlink::recording {

/// Collects the changed values of a block until its row is full, and writes the row. The values of one round share a row:
/// that is what makes a recording small and cheap.
class FrameWriter {
public:
    explicit FrameWriter(Database& database);

    /// What a row says about all its values.
    struct Head {
        std::uint32_t block = 0;
        int width = 0;
        bool isPicture = false;
        std::uint32_t reading = 0; ///< with a quality other than good: the one that it is about
    };

    /// The places of values in their reading.
    using Places = std::vector<int>;

    /// Adds those of the values of a reading that have changed, in a new row if they don't fit the one that is open.
    void Add(Head const& head, int slot, RecordedReading const& reading, RecordedMoment const& moment,
             Places const& changed, std::vector<RecordedValue> const& values, std::int64_t& nextSequence);

    /// Writes all open rows.
    void Flush();

private:
    struct OpenRow {
        Head head{};
        std::int64_t sequence = 0; ///< 0: none is open
        RecordedMoment first{};
        std::vector<std::pair<int, RecordedValue>> values; ///< by slot, as they are stored
        std::vector<std::pair<int, std::int64_t>> times;
        int lastSlot = -1; ///< readings come in the order of their slots; an earlier one begins the next round
    };

    static bool Fits(OpenRow const& row, Head const& head, int slot, RecordedMoment const& moment);
    void Write(OpenRow& row);
    Statement& InsertFor(int width);

    Database& database_;
    std::map<int, Statement> inserts_; ///< by width
    std::vector<OpenRow> rows_; ///< by block
};

} // namespace harvlink::recording
