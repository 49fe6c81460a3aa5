#include "words/values/StateText.h"

#include <array>

#include "words/text/Encoding.h"
#include "words/text/Text.h"

namespace harvlink::words {

namespace {

constexpr std::array<Named<CycleMode>, 3> CycleNames{
    {{"step", CycleMode::Step}, {"cycle", CycleMode::Cycle}, {"automatic", CycleMode::Automatic}}};

using ControlMode = ControllerStateData::ControlMode;
constexpr std::array<Named<ControlMode>, 3> ModeNames{
    {{"teach", ControlMode::Teach}, {"play", ControlMode::Play}, {"remote", ControlMode::Remote}}};

} // namespace

Json StateJson(ControllerStateData const& state) {
    return {{"mode", NameOf(ModeNames, state.controlMode)},
            {"cycle", NameOf(CycleNames, state.cycleMode)},
            {"running", state.isRunning},
            {"hold", state.isProgramPendantHold},
            {"alarm", state.isAlarming},
            {"error", state.isErroring},
            {"servo_on", state.isServoOn}};
}

Json AlarmJson(AlarmData const& alarm) {
    return {{"code", alarm.code},
            {"subcode", alarm.subcode},
            {"time", ControllerText(alarm.time)},
            {"name", ControllerText(alarm.name)}};
}

} // namespace harvlink::words
