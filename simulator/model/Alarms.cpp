#include "simulator/model/Alarms.h"

#include "simulator/model/FixedText.h"

namespace harvlink::simulator {

namespace {

std::size_t BlockIndex(AlarmCategory category) {
    return static_cast<std::size_t>(category) / 1000;
}

template <typename List>
void PushFront(List& list, Alarms::Entry const& entry) {
    std::shift_right(list.begin(), list.end(), 1);
    list.front() = entry;
}

Alarms::Entry MakeEntry(std::uint32_t code, std::uint32_t subcode, std::string_view name, std::time_t when) {
    Alarms::Entry entry;
    entry.code = code;
    entry.subcode = subcode;
    entry.subcodeType = 1;
    FillText(entry.time, CalendarText(when));
    FillText(entry.name, name);
    return entry;
}

} // namespace

AlarmCategory Alarms::CategoryOf(std::uint32_t code) {
    if (code < 4000) {
        return AlarmCategory::Major;
    }
    if (code < 8000) {
        return AlarmCategory::Minor;
    }
    if (code < 8500) {
        return AlarmCategory::SystemUser;
    }
    return code < 9000 ? AlarmCategory::User : AlarmCategory::Offline;
}

void Alarms::Raise(std::uint32_t code, std::uint32_t subcode, std::string_view name, std::time_t when) {
    PushFront(active_, MakeEntry(code, subcode, name, when));
    Record(code, subcode, name, when);
}

void Alarms::Record(std::uint32_t code, std::uint32_t subcode, std::string_view name, std::time_t when) {
    PushFront(history_.at(BlockIndex(CategoryOf(code))), MakeEntry(code, subcode, name, when));
}

Alarms::Entry Alarms::History(AlarmCategory category, std::size_t position) const {
    return history_.at(BlockIndex(category)).at(position - 1);
}

} // namespace harvlink::simulator
