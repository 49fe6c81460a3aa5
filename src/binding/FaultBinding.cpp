#include <algorithm>

#include "binding/Binding.h"

using namespace harvlink::InteropHelper;
using harvlink::Binding::ControllerOf;
using harvlink::Binding::ReturnedTexts;

namespace {

IAlarmData ToPlainAlarm(harvlink::AlarmData const& alarm, ReturnedTexts& texts) {
    return {alarm.code, alarm.subcode, texts.Copy(alarm.time), texts.Copy(alarm.name)};
}

/// All places, whether in use or not: the caller frees the same number of texts every time.
template <typename Plain, typename Alarms>
Plain ToPlainList(Alarms const& alarms, ReturnedTexts& texts) {
    Plain plain{};
    plain.numberOfAlarms = alarms.numberOfAlarms;
    std::ranges::transform(alarms.alarms, plain.alarms, [&](auto const& alarm) { return ToPlainAlarm(alarm, texts); });
    return plain;
}

} // namespace

inline namespace harvlink_c {

IStatusInfo fault_interface_get_active_alarms(ControllerHandle handle, IActiveAlarms* alarms) {
    *alarms = {};
    harvlink::ActiveAlarms read;
    harvlink::StatusInfo const status = ControllerOf(handle).Faults->GetActiveAlarms(read);
    ReturnedTexts texts(handle);
    *alarms = ToPlainList<IActiveAlarms>(read, texts);
    return texts.Checked(ToPlain(status));
}

IStatusInfo fault_interface_get_alarm_history(ControllerHandle handle, AlarmCategory category, unsigned quantity,
                                              IAlarmHistory* history) {
    harvlink::AlarmHistory read;
    harvlink::StatusInfo const status =
        ControllerOf(handle).Faults->GetAlarmHistory(static_cast<harvlink::AlarmCategory>(category), quantity, read);
    ReturnedTexts texts(handle);
    *history = ToPlainList<IAlarmHistory>(read, texts);
    return texts.Checked(ToPlain(status));
}

IStatusInfo fault_interface_clear_all_faults(ControllerHandle handle) {
    return ToPlain(ControllerOf(handle).Faults->ClearAllFaults());
}

} // namespace harvlink_c
