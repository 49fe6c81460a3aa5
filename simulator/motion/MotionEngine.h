#pragma once

#include "simulator/Clock.h"

namespace harvlink::simulator {

class ControllerModel;

/// Plays targets and knows where the control groups are.
class MotionEngine {
public:
    explicit MotionEngine(ControllerModel& model) : model_(&model) {}

    /// Whether a trajectory is being played, also while it is held.
    bool IsRunning() const { return false; }

    /// Called after every change of mode, servo power, hold or alarms; read the new state from the model.
    void OnStateChange() {}

    /// Whether Tick has anything to do.
    bool NeedsTicks() const { return false; }

    /// Advances to `now`, the time of the model's clock.
    void Tick(Clock::Duration now) { static_cast<void>(now); }

private:
    [[maybe_unused]] ControllerModel* model_;
};

} // namespace harvlink::simulator
