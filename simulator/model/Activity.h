#pragma once

#include <string_view>

namespace harvlink::simulator {

/// Something that moves the robot by itself once it was started: the selected job, or a trajectory. The model asks it what
/// it does and tells it what changed, and so needs to know neither the job engine nor the motion engine.
class Activity {
public:
    Activity() = default;
    Activity(Activity const&) = delete;
    Activity& operator=(Activity const&) = delete;

    virtual bool IsRunning() const = 0;

    /// Called after every change of mode, servo power, hold or alarms; read the new state from the model.
    virtual void OnStateChange() = 0;

protected:
    ~Activity() = default;
};

/// The selected job. A file that it executes can't be replaced.
class JobActivity : public Activity {
public:
    /// Whether the job is on the call stack of a running job.
    virtual bool IsExecuting(std::string_view job) const = 0;

protected:
    ~JobActivity() = default;
};

} // namespace harvlink::simulator
