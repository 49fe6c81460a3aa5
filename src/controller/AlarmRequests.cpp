#include "controller/AlarmRequests.h"

#include <algorithm>

namespace harvlink {

StatusInfo AlarmRequest::Decode(StatusInfo status, ReplyTo<AlarmRequest> const& reply, AlarmData& alarm) {
    if (status.StatusCode == 0) {
        FaultMessages::AlarmDataMsg const& message = reply.payload;
        alarm = {message.code,
                 message.subcode,
                 {message.time.begin(), message.time.end()},
                 {message.name.begin(), message.name.end()}};
    }
    return status;
}

ActiveAlarmsSequence::ActiveAlarmsSequence(ActiveAlarms& alarmsToFill) : alarms(alarmsToFill) {
    alarms = {};
}

std::optional<AlarmRequest> ActiveAlarmsSequence::Next() const {
    if (status.StatusCode != 0 || place == alarms.alarms.size()) {
        return std::nullopt;
    }
    return AlarmRequest{CommandNumber::AlarmDataRead, static_cast<std::uint16_t>(place + 1)};
}

void ActiveAlarmsSequence::Take(StatusInfo exchangeStatus, ReplyTo<AlarmRequest> const& reply) {
    AlarmData& alarm = alarms.alarms[place++];
    status = AlarmRequest::Decode(std::move(exchangeStatus), reply, alarm);
    alarms.numberOfAlarms += alarm.code != 0 ? 1 : 0;
}

AlarmHistorySequence::AlarmHistorySequence(AlarmCategory category, std::uint32_t quantity, AlarmHistory& historyToFill)
    : history(historyToFill),
      firstInstance(static_cast<std::size_t>(category) + 1),
      wanted(std::min<std::size_t>(quantity, historyToFill.alarms.size())) {
    history = {};
}

std::optional<AlarmRequest> AlarmHistorySequence::Next() const {
    if (history.numberOfAlarms >= wanted) {
        return std::nullopt;
    }
    return AlarmRequest{CommandNumber::AlarmHistoryRead,
                        static_cast<std::uint16_t>(firstInstance + history.numberOfAlarms)};
}

void AlarmHistorySequence::Take(StatusInfo exchangeStatus, ReplyTo<AlarmRequest> const& reply) {
    AlarmData& alarm = history.alarms[history.numberOfAlarms];
    status = AlarmRequest::Decode(std::move(exchangeStatus), reply, alarm);
    if (status.StatusCode != 0 || alarm.code == 0) {
        wanted = 0;
    } else {
        ++history.numberOfAlarms;
    }
}

bool IsAlarmCategory(AlarmCategory category) {
    constexpr AlarmCategory categories[] = {AlarmCategory::Major, AlarmCategory::Minor, AlarmCategory::SystemUser,
                                            AlarmCategory::User, AlarmCategory::Offline};
    return std::ranges::find(categories, category) != std::end(categories);
}

} // namespace harvlink
