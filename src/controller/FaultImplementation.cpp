#include "controller/FaultImplementation.h"

#include <algorithm>
#include <ostream>
#include <span>
#include <string_view>

#include "controller/AlarmRequests.h"
#include "wire/Guarded.h"

namespace harvlink {
namespace {

void WriteAlarms(std::ostream& stream, std::span<AlarmData const> alarms, std::uint32_t count,
                 std::string_view noneText, std::string_view someText) {
    if (count == 0) {
        stream << noneText;
        return;
    }
    stream << count << someText;
    std::size_t const printed = std::min<std::size_t>(count, alarms.size());
    for (std::size_t i = 0; i < printed; ++i) {
        stream << "\nAlarm " << i + 1 << " : " << alarms[i];
    }
}

} // namespace

StatusInfo FaultImplementation::GetActiveAlarms(ActiveAlarms& alarms) {
    return Guarded(*networkManager, [&] {
        ActiveAlarmsSequence sequence(alarms);
        return CarryOutAll(*networkManager, sequence);
    });
}

StatusInfo FaultImplementation::GetAlarmHistory(AlarmCategory category, std::uint32_t quantity, AlarmHistory& history) {
    return Guarded(*networkManager, [&]() -> StatusInfo {
        if (!IsAlarmCategory(category)) {
            return StatusInformation(ErrorStatusCodes::InvalidAlarmCategory, "Invalid Alarm Category");
        }
        AlarmHistorySequence sequence(category, quantity, history);
        return CarryOutAll(*networkManager, sequence);
    });
}

bool FaultImplementation::IsAlarmCategoryValid(AlarmCategory category) const {
    return IsAlarmCategory(category);
}

StatusInfo FaultImplementation::ClearAllFaults() {
    return Guarded(*networkManager, [&] {
        CancelError();
        return ResetAlarm();
    });
}

StatusInfo FaultImplementation::ResetAlarm() {
    return CarryOut(*networkManager, ResetAlarmRequest);
}

StatusInfo FaultImplementation::CancelError() {
    return CarryOut(*networkManager, CancelErrorRequest);
}

std::ostream& operator<<(std::ostream& stream, AlarmData const& alarm) {
    return stream << "Code: " << alarm.code << "\nSubcode: " << alarm.subcode << "\nTime: " << alarm.time
                  << "\nName: " << alarm.name;
}

std::ostream& operator<<(std::ostream& stream, ActiveAlarms const& alarms) {
    WriteAlarms(stream, alarms.alarms, alarms.numberOfAlarms, "No active alarms.", " alarms active.");
    return stream;
}

std::ostream& operator<<(std::ostream& stream, AlarmHistory const& history) {
    WriteAlarms(stream, history.alarms, history.numberOfAlarms, "No alarms in history.", " alarms in history.");
    return stream;
}

} // namespace harvlink
