#include "fleet/Edges.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "controller/FaultMessages.h"
#include "controller/JobMessages.h"
#include "fleet/FieldText.h"

namespace harvlink::fleet {
namespace {

using FaultMessages::AlarmDataMsg;
using Alarms = std::array<AlarmDataMsg, AlarmPlaces>;

ControllerStateData StateOf(std::span<std::byte const> record) {
    static constexpr Item stateItem{};
    return std::get<ControllerStateData>(ReadRecord(stateItem, record).value);
}

Alarms AlarmsOf(std::span<std::byte const> record) {
    Alarms alarms;
    std::memcpy(alarms.data(), record.data(), std::min(record.size(), sizeof(alarms)));
    return alarms;
}

bool Contains(Alarms const& alarms, AlarmDataMsg const& wanted) {
    return std::ranges::any_of(alarms, [&](AlarmDataMsg const& alarm) {
        return alarm.code == wanted.code && alarm.subcode == wanted.subcode;
    });
}

} // namespace

void Edges::Look(Item const& item, std::span<std::byte const> before, std::span<std::byte const> now,
                 std::int64_t time) {
    if (std::ranges::equal(before, now)) {
        return;
    }
    switch (item.Kind()) {
    case FleetItemKind::State:
        CompareStates(before, now, time);
        break;
    case FleetItemKind::Alarms:
        CompareAlarms(before, now, time);
        break;
    case FleetItemKind::Job:
        CompareJobs(before, now, time);
        break;
    default:
        break;
    }
}

void Edges::Tell(FleetEventKind kind, std::int64_t time, std::string_view text, std::int64_t before, std::int64_t after,
                 std::int32_t code) {
    RawEvent event{
        .controller = controller, .kind = kind, .time = time, .before = before, .after = after, .code = code};
    event.SetText(text);
    events.Put(event);
}

/// The first value makes no event, but an alarm that is there already does.
void Edges::CompareStates(std::span<std::byte const> before, std::span<std::byte const> now, std::int64_t time) {
    ControllerStateData const fresh = StateOf(now);
    ControllerStateData const old = before.empty() ? ControllerStateData{} : StateOf(before);
    bool const wasAlarming = old.isAlarming || old.isErroring;
    bool const isAlarming = fresh.isAlarming || fresh.isErroring;
    if (isAlarming != wasAlarming) {
        Tell(isAlarming ? FleetEventKind::AlarmRaised : FleetEventKind::AlarmCleared, time);
    }
    if (before.empty()) {
        return;
    }
    if (fresh.isServoOn != old.isServoOn) {
        Tell(fresh.isServoOn ? FleetEventKind::ServoOn : FleetEventKind::ServoOff, time);
    }
    if (fresh.controlMode != old.controlMode) {
        Tell(FleetEventKind::ControlModeChanged, time, {}, static_cast<int>(old.controlMode),
             static_cast<int>(fresh.controlMode));
    }
    if (fresh.cycleMode != old.cycleMode) {
        Tell(FleetEventKind::CycleModeChanged, time, {}, static_cast<int>(old.cycleMode),
             static_cast<int>(fresh.cycleMode));
    }
}

void Edges::CompareAlarms(std::span<std::byte const> before, std::span<std::byte const> now, std::int64_t time) {
    Alarms const old = AlarmsOf(before);
    Alarms const fresh = AlarmsOf(now);
    for (AlarmDataMsg const& alarm : old) {
        if (alarm.code != 0 && !Contains(fresh, alarm)) {
            Tell(FleetEventKind::AlarmCleared, time, FieldText(alarm.name), alarm.code);
        }
    }
    for (AlarmDataMsg const& alarm : fresh) {
        if (alarm.code != 0 && !Contains(old, alarm)) {
            Tell(FleetEventKind::AlarmRaised, time, FieldText(alarm.name), 0, alarm.code);
        }
    }
}

void Edges::CompareJobs(std::span<std::byte const> before, std::span<std::byte const> now, std::int64_t time) {
    JobMsg old;
    JobMsg fresh;
    if (before.size() < sizeof(old)) {
        return;
    }
    std::memcpy(&old, before.data(), sizeof(old));
    std::memcpy(&fresh, now.data(), sizeof(fresh));
    if (old.jobName != fresh.jobName) {
        Tell(FleetEventKind::JobChanged, time, FieldText(fresh.jobName));
    }
}

} // namespace harvlink::fleet
