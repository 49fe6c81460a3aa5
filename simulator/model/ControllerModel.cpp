#include "simulator/model/ControllerModel.h"

#include <utility>

namespace harvlink::simulator {

ControllerModel::ControllerModel(ControllerVersion generation, int rs022, std::vector<ControlGroup> controlGroups,
                                 std::size_t toolCount, Clock const& controllerClock)
    : clock(controllerClock),
      state{.generation = generation},
      groups(std::move(controlGroups)),
      parameters(groups, rs022),
      variables(generation),
      signals(generation),
      frames(toolCount) {}

void ControllerModel::SetMode(Mode mode) {
    state.mode = mode;
    if (mode == Mode::Teach) {
        state.servoOn = false;
    }
    StateChanged();
}

void ControllerModel::SetServo(bool on) {
    state.servoOn = on && state.mode != Mode::Teach && !alarms.IsActive();
    StateChanged();
}

void ControllerModel::SetHold(HoldSource source, bool on) {
    switch (source) {
    case HoldSource::Pendant:
        state.pendantHold = on;
        break;
    case HoldSource::External:
        state.externalHold = on;
        break;
    case HoldSource::Command:
        state.commandHold = on;
        break;
    }
    StateChanged();
}

void ControllerModel::SetCycle(CycleMode cycle) {
    state.cycle = cycle;
    StateChanged();
}

void ControllerModel::SetError(bool on) {
    state.error = on;
    StateChanged();
}

Refusal ControllerModel::CommandServo(bool on) {
    if (state.mode != Mode::Remote) {
        return state.mode == Mode::Teach ? Refusal::IncorrectMode : Refusal::RemoteModeNeeded;
    }
    if (on && IsFaulted()) {
        return Refusal::AlarmOrErrorIsActive;
    }
    SetServo(on);
    return Refusal::None;
}

Refusal ControllerModel::CommandHold(bool on) {
    // A hold may be set in every mode, but released only in remote mode.
    if (!on && state.mode != Mode::Remote) {
        return Refusal::RemoteModeNeeded;
    }
    SetHold(HoldSource::Command, on);
    return Refusal::None;
}

Refusal ControllerModel::CommandCycle(CycleMode cycle) {
    if (state.mode != Mode::Remote) {
        return Refusal::RemoteModeNeeded;
    }
    SetCycle(cycle);
    return Refusal::None;
}

Refusal ControllerModel::CheckReadyToMove() const {
    if (state.mode != Mode::Remote) {
        return Refusal::RemoteModeNeeded;
    }
    if (IsFaulted()) {
        return Refusal::AlarmOrErrorIsActive;
    }
    if (state.IsHeld()) {
        return HoldRefusal();
    }
    return state.servoOn ? Refusal::None : Refusal::ServoPowerIsOff;
}

Refusal ControllerModel::HoldRefusal() const {
    if (state.pendantHold) {
        return Refusal::PendantHold;
    }
    return state.externalHold ? Refusal::ExternalHold : Refusal::CommandHold;
}

void ControllerModel::RaiseAlarm(std::uint32_t code, std::uint32_t subcode, std::string_view name) {
    alarms.Raise(code, subcode, name, clock.WallTime());
    state.servoOn = false;
    StateChanged();
}

void ControllerModel::ResetAlarms() {
    alarms.Reset();
    StateChanged();
}

void ControllerModel::UpdateTimes() {
    times.Update(clock.Now(), {.servo = state.servoOn, .playback = IsJobRunning(), .moving = IsMotionRunning()});
}

void ControllerModel::StateChanged() {
    UpdateTimes();
    // The job first, because motion is refused while a job runs.
    if (job_ != nullptr) {
        job_->OnStateChange();
    }
    if (motion_ != nullptr) {
        motion_->OnStateChange();
    }
    UpdateTimes();
}

} // namespace harvlink::simulator
