#pragma once

#include <cstdint>
#include <limits>
#include <vector>

namespace harvlink::fleet {

/// Which slot is due next. A heap that knows where each slot stands. A time that becomes later, as that of most exchanges
/// does, is only noted: the slot sinks when it comes to the front.
class DueHeap {
public:
    using Slot = std::uint32_t;
    static constexpr std::int64_t never = std::numeric_limits<std::int64_t>::max();

    /// Adds the slot if it is not there.
    void Set(Slot slot, std::int64_t time) {
        if (slot >= places.size()) {
            places.resize(slot + 1, absent);
        }
        if (places[slot] == absent) {
            places[slot] = entries.size();
            entries.push_back({time, time, slot});
            Rise(places[slot]);
            return;
        }
        Entry& entry = entries[places[slot]];
        entry.due = time;
        if (time < entry.key) {
            entry.key = time;
            Rise(places[slot]);
        }
    }

    void Remove(Slot slot) {
        std::size_t const place = places[slot];
        Entry const last = entries.back();
        entries.pop_back();
        places[slot] = absent;
        if (last.slot != slot) {
            Put(place, last);
            Rise(place);
            Sink(places[last.slot]);
        }
    }

    std::int64_t NextTime() {
        while (!entries.empty() && entries.front().key < entries.front().due) {
            entries.front().key = entries.front().due;
            Sink(0);
        }
        return entries.empty() ? never : entries.front().key;
    }

    /// The one that NextTime has found.
    Slot NextSlot() const { return entries.front().slot; }

private:
    struct Entry {
        std::int64_t key; ///< orders the heap; never later than `due`
        std::int64_t due;
        Slot slot;
    };
    static constexpr std::size_t absent = std::numeric_limits<std::size_t>::max();

    void Put(std::size_t place, Entry const& entry) {
        entries[place] = entry;
        places[entry.slot] = place;
    }

    void Rise(std::size_t place) {
        Entry const entry = entries[place];
        for (; place > 0 && entry.key < entries[(place - 1) / 2].key; place = (place - 1) / 2) {
            Put(place, entries[(place - 1) / 2]);
        }
        Put(place, entry);
    }

    void Sink(std::size_t place) {
        Entry const entry = entries[place];
        for (;;) {
            std::size_t child = 2 * place + 1;
            if (child + 1 < entries.size() && entries[child + 1].key < entries[child].key) {
                ++child;
            }
            if (child >= entries.size() || entries[child].key >= entry.key) {
                break;
            }
            Put(place, entries[child]);
            place = child;
        }
        Put(place, entry);
    }

    std::vector<Entry> entries;
    std::vector<std::size_t> places; ///< of each slot in `entries`
};

} // namespace harvlink::fleet
