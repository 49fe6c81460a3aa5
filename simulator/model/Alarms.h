#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string_view>

#include "controller/FaultMessages.h"
#include "harvlink/FaultInterface.h"

namespace harvlink::simulator {

/// The alarms that are active and those that were. Records are kept in the form in which they are read.
class Alarms {
public:
    using Record = FaultMessages::AlarmDataMsg;
    static constexpr std::size_t ActivePlaces = 4;
    static constexpr std::size_t HistoryLength = 100;

    /// The block of the history to which an alarm number belongs.
    static AlarmCategory CategoryOf(std::uint32_t code);

    /// Puts an alarm in front of the active ones and of its history. The oldest falls off the end.
    void Raise(std::uint32_t code, std::uint32_t subcode, std::string_view name, std::time_t when);
    void Reset() { active_ = {}; }

    bool IsActive() const { return active_.front().code != 0; }

    /// The alarm at a place counted from 1, the newest first; an empty record beyond the last.
    Record Active(std::size_t place) const { return active_.at(place - 1); }

    /// Like Active, for one category; `position` counts from 1 to HistoryLength.
    Record History(AlarmCategory category, std::size_t position) const;

private:
    using Block = std::array<Record, HistoryLength>;

    std::array<Record, ActivePlaces> active_{};
    std::array<Block, 5> history_{};
};

} // namespace harvlink::simulator
