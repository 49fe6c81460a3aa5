#pragma once

#include <cstdint>
#include <vector>

#include "recording/model/Records.h"
#include "recording/store/Database.h"

namespace harvlink::recording {

/// Where the values of a reading lie: in the rows of a block, from a slot on. The readings of a controller share blocks, so
/// that a round of many makes one row.
struct Place {
    std::uint32_t block = 0; ///< 0: not placed yet
    int slot = 0;
};

struct Block {
    std::uint32_t controller = 0;
    int width = 0;
};

/// What a file says about its controllers and readings. Ids are places in the lists, from 1.
struct Catalogue {
    /// Throws RecordingError if the file contradicts itself.
    explicit Catalogue(Database& database);

    std::vector<RecordedController> controllers;
    std::vector<RecordedReading> readings;
    std::vector<Block> blocks;
    std::vector<Place> places; ///< of the readings

private:
    void LoadReadings(Database& database);
    void LoadItems(Database& database);
    void Check(Database& database) const;
};

} // namespace harvlink::recording
