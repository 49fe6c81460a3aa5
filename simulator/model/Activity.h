#pragma once

#include <string_view>

namespace harvlink::simulator {

/// Something that moves the robot by itself after a start: the selected job or a trajectory. The model uses the job
/// engine and the motion engine only through this interface, so it does not depend on them.
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

/// The selected job. The files of a running job can't be replaced.
class JobActivity : public Activity {
public:
    /// Whether the job is on the call stack of a running job.
    virtual bool IsExecuting(std::string_view job) const = 0;

protected:
    ~JobActivity() = default;
};

} // namespace harvlink::simulator
