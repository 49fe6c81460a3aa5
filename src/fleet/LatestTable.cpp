#include "fleet/LatestTable.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace harvlink::fleet {
namespace {

constexpr std::size_t wordSize = sizeof(std::uint64_t);
constexpr std::size_t mostWords = Stamp::words + (LargestRecord + wordSize - 1) / wordSize;

using Words = std::array<std::uint64_t, mostWords>;

} // namespace

LatestTable::LatestTable(std::span<Item> items) {
    std::size_t size = 0;
    for (Item& item : items) {
        item.cell = static_cast<std::uint32_t>(size);
        size += WordsOf(item) + 1;
    }
    words = std::make_unique<SharedWord[]>(size);
    for (Item const& item : items) {
        WriteCell(CellOf(item), 2, Stamp{}.Pack());
    }
}

void LatestTable::Write(Item const& item, Stamp const& stamp, std::span<std::byte const> record) {
    Words written{};
    std::ranges::copy(stamp.Pack(), written.begin());
    std::ranges::copy(record, std::as_writable_bytes(std::span(written).subspan(Stamp::words)).begin());
    auto const cell = CellOf(item);
    std::size_t const used = Stamp::words + (record.size() + wordSize - 1) / wordSize;
    WriteCell(cell, cell[0].load(std::memory_order_relaxed) + 2, std::span(written).first(used));
}

void LatestTable::WriteQuality(Item const& item, FleetQuality quality, std::int32_t code) {
    auto const cell = CellOf(item);
    std::array<std::uint64_t, Stamp::words> packed{};
    (void)ReadCell(cell, packed);
    Stamp stamp = Stamp::Unpack(packed);
    stamp.quality = quality;
    stamp.code = code;
    WriteCell(cell, cell[0].load(std::memory_order_relaxed) + 2, stamp.Pack());
}

Stamp LatestTable::Read(Item const& item, std::span<std::byte> record) const {
    Words read{};
    auto const wanted = std::span(read).first(WordsOf(item));
    while (ReadCell(CellOf(item), wanted) % 2 != 0) {
    }
    Stamp const stamp = Stamp::Unpack({read[0], read[1], read[2]});
    std::memcpy(record.data(), read.data() + Stamp::words, std::min<std::size_t>(stamp.size, record.size()));
    return stamp;
}

std::size_t LatestTable::WordsOf(Item const& item) {
    return Stamp::words + (RoomForRecord(item) + wordSize - 1) / wordSize;
}

std::span<SharedWord> LatestTable::CellOf(Item const& item) const {
    return {words.get() + item.cell, WordsOf(item) + 1};
}

} // namespace harvlink::fleet
