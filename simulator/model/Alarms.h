#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string_view>

#include "controller/FaultMessages.h"
#include "harvlink/FaultInterface.h"

namespace harvlink::simulator {

/// The active alarms and the alarm history. They are kept as the records that a client reads.
class Alarms {
public:
    using Entry = FaultMessages::AlarmDataMsg;
    static constexpr std::size_t ActivePlaces = 4;
    static constexpr std::size_t HistoryLength = 100;
    static constexpr std::size_t NameLength = 32;

    /// The block of the history to which an alarm number belongs.
    static AlarmCategory CategoryOf(std::uint32_t code);

    /// Puts an alarm at the front of the active alarms and of its history. The oldest alarm is dropped.
    void Raise(std::uint32_t code, std::uint32_t subcode, std::string_view name, std::time_t when);

    /// Puts an alarm that is no longer active into its history.
    void Record(std::uint32_t code, std::uint32_t subcode, std::string_view name, std::time_t when);

    void Reset() { active_ = {}; }

    bool IsActive() const { return active_.front().code != 0; }

    /// The alarm at a place counted from 1, the newest first; an empty entry beyond the last.
    Entry Active(std::size_t place) const { return active_.at(place - 1); }

    /// Like Active, for one category; `position` counts from 1 to HistoryLength.
    Entry History(AlarmCategory category, std::size_t position) const;

private:
    using Block = std::array<Entry, HistoryLength>;

    std::array<Entry, ActivePlaces> active_{};
    std::array<Block, 5> history_{};
};

} // namespace harvlink::simulator
