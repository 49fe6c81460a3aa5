#pragma once

#include <optional>

#include "controller/FaultMessages.h"
#include "harvlink/FaultInterface.h"
#include "wire/Request.h"

namespace harvlink {

/// One place of the active alarms or one entry of the history. A failure leaves the record as it is.
struct AlarmRequest {
    using Reply = FaultMessages::AlarmDataMsg;
    static constexpr Service service = Service::ReadAll;
    CommandNumber command;
    std::uint16_t instance;

    static StatusInfo Decode(StatusInfo status, ReplyTo<AlarmRequest> const& reply, AlarmData& alarm);
};

/// Reads all four places of the active alarms: an empty one does not end the list, unlike in the history.
class ActiveAlarmsSequence {
public:
    /// Empties `alarms`, which must outlive the sequence.
    explicit ActiveAlarmsSequence(ActiveAlarms& alarms);

    std::optional<AlarmRequest> Next() const;
    void Take(StatusInfo exchangeStatus, ReplyTo<AlarmRequest> const& reply);
    StatusInfo const& Result() const { return status; }

private:
    ActiveAlarms& alarms;
    std::size_t place = 0;
    StatusInfo status = StatusInformation(ErrorStatusCodes::Ok);
};

/// Reads the newest entries of one category. The first empty entry ends the list: it is stored and not counted.
class AlarmHistorySequence {
public:
    /// Empties `history`, which must outlive the sequence. More than 100 entries are never asked for.
    AlarmHistorySequence(AlarmCategory category, std::uint32_t quantity, AlarmHistory& history);

    std::optional<AlarmRequest> Next() const;
    void Take(StatusInfo exchangeStatus, ReplyTo<AlarmRequest> const& reply);
    StatusInfo const& Result() const { return status; }

private:
    AlarmHistory& history;
    std::size_t firstInstance;
    std::size_t wanted;
    StatusInfo status = StatusInformation(ErrorStatusCodes::Ok);
};

/// Whether the history has such a category.
bool IsAlarmCategory(AlarmCategory category);

struct AlarmResetRequest {
    using Reply = std::uint32_t;
    static constexpr CommandNumber command = CommandNumber::AlarmReset;
    static constexpr Service service = Service::WriteOne;
    std::uint16_t instance = 0;
    std::uint32_t payload = 1;
};

inline constexpr AlarmResetRequest ResetAlarmRequest{1};
inline constexpr AlarmResetRequest CancelErrorRequest{2};

} // namespace harvlink
