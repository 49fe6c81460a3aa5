#pragma once

#include "harvlink/FaultInterface.h"
#include "wire/NetworkManager.h"

namespace harvlink {

class FaultImplementation final : public FaultInterface {
public:
    explicit FaultImplementation(NetworkManager* manager) : networkManager(manager) {}

    StatusInfo GetActiveAlarms(ActiveAlarms& alarms) override;
    StatusInfo GetAlarmHistory(AlarmCategory category, std::uint32_t quantity, AlarmHistory& history) override;
    StatusInfo ClearAllFaults() override;

    StatusInfo ResetAlarm();
    StatusInfo CancelError();
    bool IsAlarmCategoryValid(AlarmCategory category) const;

private:
    NetworkManager* networkManager;
};

} // namespace harvlink
