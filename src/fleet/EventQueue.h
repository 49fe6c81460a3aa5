#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <string_view>
#include <vector>

#include "fleet/Inbox.h"
#include "harvlink/Fleet.h"

namespace harvlink::fleet {

/// An event on its way from the engine to a program.
struct RawEvent {
    std::uint32_t controller = 0; ///< its id
    FleetEventKind kind = FleetEventKind::StateChanged;
    std::int64_t time = 0; ///< nanoseconds since the epoch
    std::int64_t before = 0;
    std::int64_t after = 0;
    std::int32_t code = 0;
    std::array<char, 48> text{};

    /// Cuts it to the room that there is.
    void SetText(std::string_view words);
};

/// Events are rare, so a lock does. It is held for no longer than it takes to copy one.
class EventQueue {
public:
    explicit EventQueue(std::uint32_t capacity) : events(std::max(capacity, 1U)) {}

    bool IsOpen() const { return inbox.IsOpen(); }

    /// Of the engine's thread alone. Drops the oldest event if there is no room.
    void Put(RawEvent const& event);

    template <typename Use>
    std::size_t Take(std::size_t most, std::chrono::milliseconds wait, Use const& use) {
        auto const takeSome = [&] {
            std::size_t taken = 0;
            RawEvent event;
            while (taken < most && TakeNext(event)) {
                taken += use(event) ? 1 : 0;
            }
            return taken;
        };
        return inbox.Take(wait, takeSome, [this] { return count.load(std::memory_order_seq_cst) == 0; });
    }

    std::uint64_t Dropped() const { return dropped.load(std::memory_order_relaxed); }

private:
    bool TakeNext(RawEvent& event);

    std::mutex mutex;
    std::vector<RawEvent> events;
    std::size_t first = 0;
    std::atomic<std::size_t> count = 0;
    std::atomic<std::uint64_t> dropped = 0;
    Inbox inbox;
};

} // namespace harvlink::fleet
