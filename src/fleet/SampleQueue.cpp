#include "fleet/SampleQueue.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>
#include <utility>

namespace harvlink::fleet {
namespace {

/// The largest capacity is more than a 32-bit processor can address.
std::size_t Addressable(std::uint64_t count) {
    if (!std::in_range<std::size_t>(count)) {
        throw std::bad_array_new_length();
    }
    return static_cast<std::size_t>(count);
}

} // namespace

SampleQueue::SampleQueue(std::uint32_t capacity)
    : mask(std::bit_ceil(std::uint64_t{std::max(capacity, std::uint32_t{AlarmPlaces})}) - 1),
      words(std::make_unique<SharedWord[]>(Addressable((mask + 1) * (slotWords + 1)))) {}

void SampleQueue::Put(std::uint32_t controller, std::uint32_t item, Stamp const& stamp,
                      std::span<std::byte const> record) {
    std::uint64_t const number = samples.load(std::memory_order_relaxed) + 1;
    Slot slot{controller | std::uint64_t{item} << 32U, number};
    std::ranges::copy(stamp.Pack(), slot.begin() + 3);
    std::uint64_t place = written.load(std::memory_order_relaxed);
    std::size_t begin = 0;
    do {
        auto const part = record.subspan(begin, std::min(record.size() - begin, payloadBytes));
        slot[2] = begin;
        std::ranges::copy(part, std::as_writable_bytes(std::span(slot).subspan(headWords)).begin());
        std::size_t const used = headWords + (part.size() + sizeof(std::uint64_t) - 1) / sizeof(std::uint64_t);
        WriteCell(CellOf(place), 2 * place + 2, std::span(slot).first(used));
        ++place;
        begin += payloadBytes;
    } while (begin < record.size());
    samples.store(number, std::memory_order_relaxed);
    written.store(place, std::memory_order_seq_cst);
}

/// Reads the slots of one sample. One that has lost its begin or its end was written over.
bool SampleQueue::TakeNext(RawSample& sample) {
    Slot slot{};
    while (ReadSlot(slot)) {
        if (Append(slot, sample)) {
            dropped.fetch_add(slot[1] - lastSample - 1, std::memory_order_relaxed);
            lastSample = slot[1];
            return true;
        }
    }
    return false;
}

bool SampleQueue::ReadSlot(Slot& slot) {
    for (;;) {
        std::uint64_t const end = written.load(std::memory_order_acquire);
        std::uint64_t place = next.load(std::memory_order_relaxed);
        if (place == end) {
            return false;
        }
        place = std::max(place, end - std::min(end, mask + 1));
        bool const isWhole = ReadCell(CellOf(place), slot) == 2 * place + 2;
        next.store(place + 1, std::memory_order_relaxed);
        if (isWhole) {
            return true;
        }
    }
}

/// Adds the part in a slot. Returns whether the sample is complete.
bool SampleQueue::Append(Slot const& slot, RawSample& sample) {
    auto const begin = static_cast<std::size_t>(slot[2]);
    auto const controller = static_cast<std::uint32_t>(slot[0]);
    if (begin == 0) {
        sample.controller = controller;
        sample.item = static_cast<std::uint32_t>(slot[0] >> 32U);
        sample.stamp = Stamp::Unpack({slot[3], slot[4], slot[5]});
        assembled = 0;
        assembling = slot[1];
    }
    if (assembling != slot[1] || begin != assembled) {
        return false;
    }
    std::size_t const size = std::min<std::size_t>(sample.stamp.size, sample.record.size());
    std::size_t const length = std::min(size - std::min(size, begin), payloadBytes);
    std::memcpy(sample.record.data() + begin, slot.data() + headWords, length);
    assembled += payloadBytes;
    return assembled >= size;
}

std::span<SharedWord> SampleQueue::CellOf(std::uint64_t number) const {
    return {words.get() + (number & mask) * (slotWords + 1), slotWords + 1};
}

} // namespace harvlink::fleet
