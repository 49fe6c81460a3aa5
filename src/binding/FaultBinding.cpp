#include <algorithm>

#include "binding/Binding.h"

using namespace harvlink::InteropHelper;
using harvlink::Binding::ControllerOf;

namespace {

IAlarmData ToPlainAlarm(harvlink::AlarmData const& alarm) {
    return {alarm.code, alarm.subcode, ConvertStringToChar8(alarm.time), ConvertStringToChar8(alarm.name)};
}

/// All places, whether in use or not: the caller frees the same number of texts every time.
template <typename Plain, typename Alarms>
Plain ToPlainList(Alarms const& alarms) {
    Plain plain{};
    plain.numberOfAlarms = alarms.numberOfAlarms;
    std::ranges::transform(alarms.alarms, plain.alarms, [](auto const& alarm) { return ToPlainAlarm(alarm); });
    return plain;
}

} // namespace

IStatusInfo fault_interface_get_active_alarms(ControllerHandle handle, IActiveAlarms* alarms) {
    *alarms = {};
    harvlink::ActiveAlarms read;
    harvlink::StatusInfo const status = ControllerOf(handle).Faults->GetActiveAlarms(read);
    *alarms = ToPlainList<IActiveAlarms>(read);
    return ToPlain(status);
}

IStatusInfo fault_interface_get_alarm_history(ControllerHandle handle, AlarmCategory category, unsigned quantity,
                                              IAlarmHistory* history) {
    harvlink::AlarmHistory read;
    harvlink::StatusInfo const status =
        ControllerOf(handle).Faults->GetAlarmHistory(static_cast<harvlink::AlarmCategory>(category), quantity, read);
    *history = ToPlainList<IAlarmHistory>(read);
    return ToPlain(status);
}

IStatusInfo fault_interface_clear_all_faults(ControllerHandle handle) {
    return ToPlain(ControllerOf(handle).Faults->ClearAllFaults());
}
