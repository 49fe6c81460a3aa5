#include "simulator/motion/MotionEngine.h"

#include "simulator/model/ControllerModel.h"
#include "simulator/motion/MotionRefusal.h"

namespace harvlink::simulator {

MotionEngine::MotionEngine(ControllerModel& model)
    : model_(model),
      cell_(model.groups, model.frames),
      player_(cell_, model.groups),
      servos_(cell_),
      planned_(player_.Planned()) {
    model_.SetMotionActivity(*this);
}

Refusal MotionEngine::CheckState() const {
    ControllerState const& state = model_.state;
    if (state.mode != Mode::Remote) {
        return state.mode == Mode::Teach ? MotionRefusal::NotInPlayMode : MotionRefusal::RemoteModeNeeded;
    }
    if (model_.IsFaulted()) {
        return MotionRefusal::AlarmIsActive;
    }
    if (!state.servoOn) {
        return MotionRefusal::ServoOff;
    }
    if (model_.IsJobRunning()) {
        return MotionRefusal::JobIsRunning;
    }
    return state.IsHeld() ? MotionRefusal::HoldIsOn : Refusal::None;
}

void MotionEngine::OnStateChange() {
    Tick(model_.clock.Now());
}

void MotionEngine::UpdateRun() {
    auto const obstacle = CheckState();
    if (IsRunning() && obstacle != Refusal::None && obstacle != MotionRefusal::HoldIsOn) {
        isInterrupted_ = true;
    }
    player_.Run(isStarted_ && !isInterrupted_ && obstacle == Refusal::None);
}

void MotionEngine::Tick(Clock::Duration now) {
    // The time until now belongs to the state before the change.
    double const seconds = std::chrono::duration<double>(now - time_).count();
    if (seconds > 0.0) {
        time_ = now;
        player_.Advance(seconds);
        servos_.Update(player_.Now(), seconds);
    }
    UpdateRun();
}

Refusal MotionEngine::Start() {
    Tick(model_.clock.Now());
    auto const obstacle = CheckState();
    if (obstacle != Refusal::None) {
        return obstacle;
    }
    isStarted_ = true;
    isInterrupted_ = false;
    UpdateRun();
    return Refusal::None;
}

void MotionEngine::Stop() {
    Tick(model_.clock.Now());
    isStarted_ = false;
    isInterrupted_ = false;
    UpdateRun();
}

Refusal MotionEngine::Clear(std::int32_t slot) {
    Tick(model_.clock.Now());
    if (slot == MotionClearGroupTargets::AllGroups) {
        for (std::size_t i = 0; i < MotionSlots; ++i) {
            player_.Clear(i);
        }
    } else if (Settings(static_cast<TargetControlGroup>(slot)) != nullptr) {
        player_.Clear(static_cast<std::size_t>(slot));
    } else {
        return MotionRefusal::NoSuchGroup;
    }
    isInterrupted_ = isInterrupted_ && player_.HasSteps();
    UpdateRun();
    return Refusal::None;
}

TargetSettings* MotionEngine::Settings(TargetControlGroup slot) {
    auto const index = static_cast<std::size_t>(slot); // a negative number is too large then
    return index < MotionSlots && model_.groups.Slot(index) != nullptr ? &settings_[index] : nullptr;
}

Refusal MotionEngine::SendTargets(MotionTargetSend const& message) {
    Tick(model_.clock.Now());
    auto const obstacle = CheckState();
    if (isStarted_ && obstacle != Refusal::None && obstacle != MotionRefusal::HoldIsOn) {
        return obstacle;
    }
    if (isInterrupted_) {
        return MotionRefusal::PlaybackInterrupted;
    }
    if (player_.IsFull()) {
        return MotionRefusal::BufferIsFull;
    }
    auto const refusal = CheckSlots(message.groupBits);
    if (refusal != Refusal::None) {
        return refusal;
    }
    PlannedStep step;
    auto const unplayable = PlanStep(message, step);
    if (unplayable == Refusal::None) {
        player_.Add(step);
    }
    return unplayable;
}

Refusal MotionEngine::CheckSlots(std::uint32_t groupBits) const {
    if (groupBits >> MotionSlots != 0) {
        return MotionRefusal::NoSuchGroup;
    }
    for (std::size_t slot = 0; slot < MotionSlots; ++slot) {
        if ((groupBits >> slot & 1U) == 0) {
            continue;
        }
        ControlGroup const* const group = model_.groups.Slot(slot);
        if (group == nullptr) {
            return MotionRefusal::NoSuchGroup;
        }
        for (std::size_t other = 0; other < slot; ++other) {
            if ((groupBits >> other & 1U) != 0 && model_.groups.Slot(other)->id == group->id) {
                return MotionRefusal::DuplicateGroup;
            }
        }
    }
    return Refusal::None;
}

Refusal MotionEngine::PlanStep(MotionTargetSend const& message, PlannedStep& step) {
    // Base coordinates of an arm depend on the target of its base in the same step.
    planned_ = player_.Planned();
    auto const refusal = PlanGroups(message, false, step);
    return refusal == Refusal::None ? PlanGroups(message, true, step) : refusal;
}

Refusal MotionEngine::PlanGroups(MotionTargetSend const& message, bool arms, PlannedStep& step) {
    for (std::size_t slot = 0; slot < MotionSlots; ++slot) {
        if ((message.groupBits >> slot & 1U) == 0) {
            continue;
        }
        ControlGroup const& group = *model_.groups.Slot(slot);
        if (cell_.Axes(group).isArm != arms) {
            continue;
        }
        step.moves[slot].emplace();
        PlannedMove& move = *step.moves[slot];
        TargetPlanner const planner(cell_, group, settings_[slot], player_.Planned(), planned_);
        auto const refusal = planner.Plan(message.targets[slot], move);
        if (refusal != Refusal::None) {
            return refusal;
        }
        planned_[cell_.Index(group)] = move.path.To();
    }
    return Refusal::None;
}

std::int32_t MotionEngine::ActiveTool(ControlGroup const& group) const {
    for (std::size_t slot = 0; slot < MotionSlots; ++slot) {
        if (model_.groups.Slot(slot) == &group) {
            return settings_[slot].tool.value_or(0);
        }
    }
    return 0;
}

WireAxes MotionEngine::Torque(ControlGroup const& group) const {
    return model_.state.servoOn ? servos_.Torque(group) : WireAxes{};
}

} // namespace harvlink::simulator
