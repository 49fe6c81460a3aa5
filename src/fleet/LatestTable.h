#pragma once

#include <memory>
#include <span>
#include <vector>

#include "fleet/Item.h"
#include "fleet/Record.h"
#include "fleet/SharedCell.h"
#include "fleet/Stamp.h"

namespace harvlink::fleet {

/// The latest record of each item of a controller. The engine writes, anybody reads, and nobody waits for anybody: a reader
/// that meets a write tries again.
class LatestTable {
public:
    /// Gives each item its cell.
    explicit LatestTable(std::span<Item> items);

    /// Of the engine's thread alone.
    /// @{
    void Write(Item const& item, Stamp const& stamp, std::span<std::byte const> record);
    /// Leaves the value and its times as they are.
    void WriteQuality(Item const& item, FleetQuality quality, std::int32_t code);
    /// @}

    /// `record` must have RoomForRecord bytes.
    Stamp Read(Item const& item, std::span<std::byte> record) const;

private:
    static std::size_t WordsOf(Item const& item);
    std::span<SharedWord> CellOf(Item const& item) const;

    std::unique_ptr<SharedWord[]> words;
};

} // namespace harvlink::fleet
