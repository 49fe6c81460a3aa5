#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <span>

#include "fleet/Inbox.h"
#include "fleet/Record.h"
#include "fleet/SharedCell.h"
#include "fleet/Stamp.h"

namespace harvlink::fleet {

/// A sample on its way from the engine to a program.
struct RawSample {
    std::uint32_t controller = 0; ///< its id
    std::uint32_t item = 0; ///< its place
    Stamp stamp;
    std::array<std::byte, LargestRecord> record{};

    std::span<std::byte const> Record() const { return std::span(record).first(stamp.size); }
};

/// A ring in which the engine writes over the oldest samples, whether they were taken or not, so that nobody who takes can
/// hold it up. A reader sees by the sequence of a slot whether it was written over meanwhile. A long record takes several
/// slots in a row.
class SampleQueue {
public:
    /// A number of slots; rounded up to a power of two.
    explicit SampleQueue(std::uint32_t capacity);

    bool IsOpen() const { return inbox.IsOpen(); }

    /// Of the engine's thread alone.
    /// @{
    void Put(std::uint32_t controller, std::uint32_t item, Stamp const& stamp, std::span<std::byte const> record);
    void Announce() { inbox.Announce(); }
    /// @}

    /// Calls `use` with the oldest samples, `most` at most, and returns how many. Waits for the first one.
    template <typename Use>
    std::size_t Take(std::size_t most, std::chrono::milliseconds wait, Use const& use) {
        return inbox.Take(
            wait, [&] { return TakeSome(most, use); }, [&] { return IsEmpty(); });
    }

    std::uint64_t Samples() const { return samples.load(std::memory_order_relaxed); }
    std::uint64_t Dropped() const { return dropped.load(std::memory_order_relaxed); }

private:
    static constexpr std::size_t payloadWords = 8;
    static constexpr std::size_t payloadBytes = payloadWords * sizeof(std::uint64_t);
    /// Before the payload: controller and item, number of the sample, part of it, and its stamp.
    static constexpr std::size_t headWords = 3 + Stamp::words;
    static constexpr std::size_t slotWords = headWords + payloadWords;
    using Slot = std::array<std::uint64_t, slotWords>;

    template <typename Use>
    std::size_t TakeSome(std::size_t most, Use const& use) {
        std::scoped_lock const lock(takers);
        std::size_t taken = 0;
        RawSample sample;
        while (taken < most && TakeNext(sample)) {
            taken += use(sample) ? 1 : 0;
        }
        return taken;
    }

    bool IsEmpty() const { return next.load(std::memory_order_seq_cst) == written.load(std::memory_order_seq_cst); }
    bool TakeNext(RawSample& sample);
    bool ReadSlot(Slot& slot);
    bool Append(Slot const& slot, RawSample& sample);
    std::span<SharedWord> CellOf(std::uint64_t number) const;

    std::uint64_t const mask;
    std::unique_ptr<SharedWord[]> words;
    std::atomic<std::uint64_t> written = 0; ///< slots so far
    std::atomic<std::uint64_t> samples = 0;
    std::mutex takers;
    std::atomic<std::uint64_t> next = 0; ///< slot to be taken
    std::uint64_t lastSample = 0; ///< number of the sample that was taken last
    std::uint64_t assembling = 0; ///< number of the sample whose parts are put together
    std::size_t assembled = 0; ///< where its next part begins
    std::atomic<std::uint64_t> dropped = 0;
    Inbox inbox;
};

} // namespace harvlink::fleet
