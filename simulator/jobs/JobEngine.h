#pragma once

#include "simulator/Clock.h"
#include "simulator/Refusal.h"

namespace harvlink::simulator {

class ControllerModel;

/// Runs the selected job.
class JobEngine {
public:
    explicit JobEngine(ControllerModel& model) : model_(&model) {}

    /// Starts the selected job. The model has checked mode, alarms, hold, servo power and that nothing runs.
    Refusal Start() { return Refusal::NoExecutionJob; }

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
