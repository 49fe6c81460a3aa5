#include "controller/FaultImplementation.h"

#include <algorithm>
#include <ostream>
#include <span>
#include <string_view>

#include "controller/FaultMessages.h"

namespace harvlink {
namespace {

constexpr std::uint16_t resetInstance = 1;
constexpr std::uint16_t cancelInstance = 2;

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

StatusInfo FaultImplementation::ReadAlarm(CommandNumber command, unsigned short instance, AlarmData& alarm) {
    StatusInfo status;
    auto const reply = networkManager->SimpleRequest<FaultMessages::AlarmDataMsg>(
        instance, command, status, FixedField::WholeRecord, ServiceReadAll);
    if (status.StatusCode == 0) {
        FaultMessages::AlarmDataMsg const& message = reply.payload;
        alarm = {message.code,
                 message.subcode,
                 {message.time.begin(), message.time.end()},
                 {message.name.begin(), message.name.end()}};
    }
    return status;
}

StatusInfo FaultImplementation::GetActiveAlarms(ActiveAlarms& alarms) {
    alarms = {};
    StatusInfo status;
    // All four places: an empty one does not end the list, unlike in the history.
    for (std::size_t i = 0; i < alarms.alarms.size(); ++i) {
        status = ReadAlarm(CommandNumber::AlarmDataRead, static_cast<std::uint16_t>(i + 1), alarms.alarms[i]);
        if (status.StatusCode != 0) {
            return status;
        }
        if (alarms.alarms[i].code != 0) {
            ++alarms.numberOfAlarms;
        }
    }
    return status;
}

StatusInfo FaultImplementation::GetAlarmHistory(AlarmCategory category, std::uint32_t quantity, AlarmHistory& history) {
    if (!IsAlarmCategoryValid(category)) {
        return StatusInformation(ErrorStatusCodes::InvalidAlarmCategory, "Invalid Alarm Category");
    }
    history = {};
    StatusInfo status = StatusInformation(ErrorStatusCodes::Ok);
    std::size_t const wanted = std::min<std::size_t>(quantity, history.alarms.size());
    for (std::size_t i = 0; i < wanted; ++i) {
        auto const instance = static_cast<std::uint16_t>(static_cast<std::size_t>(category) + i + 1);
        status = ReadAlarm(CommandNumber::AlarmHistoryRead, instance, history.alarms[i]);
        if (status.StatusCode != 0 || history.alarms[i].code == 0) {
            break;
        }
        ++history.numberOfAlarms;
    }
    return status;
}

bool FaultImplementation::IsAlarmCategoryValid(AlarmCategory category) const {
    constexpr AlarmCategory categories[] = {AlarmCategory::Major, AlarmCategory::Minor, AlarmCategory::SystemUser,
                                            AlarmCategory::User, AlarmCategory::Offline};
    return std::ranges::find(categories, category) != std::end(categories);
}

StatusInfo FaultImplementation::ClearAllFaults() {
    CancelError();
    return ResetAlarm();
}

StatusInfo FaultImplementation::ResetAlarm() {
    return SendReset(resetInstance);
}

StatusInfo FaultImplementation::CancelError() {
    return SendReset(cancelInstance);
}

StatusInfo FaultImplementation::SendReset(unsigned short instance) {
    StatusInfo status;
    networkManager->RecordRequest<std::uint32_t>(std::uint32_t{1}, instance, CommandNumber::AlarmReset, status,
                                                 FixedField::FirstAttribute, ServiceWriteOne);
    return status;
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
