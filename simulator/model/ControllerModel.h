#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/base/Clock.h"
#include "simulator/model/Activity.h"
#include "simulator/model/Alarms.h"
#include "simulator/model/ControlGroups.h"
#include "simulator/model/ControllerState.h"
#include "simulator/model/Frames.h"
#include "simulator/model/OperatingTimes.h"
#include "simulator/model/Parameters.h"
#include "simulator/model/Signals.h"
#include "simulator/model/Variables.h"
#include "simulator/protocol/Refusal.h"

namespace harvlink::simulator {

/// All that a controller remembers, without the network. Files, jobs and motion work on it and are put together with it
/// in ControllerParts.
///
/// Not thread-safe: on a running server it is reached through VirtualController::With. Data members without interlocks
/// (variables, signals, frames) are changed directly; the state only through the operations below, which carry out what
/// hangs together on a controller:
/// - an alarm drops servo power, and keeps it off until it is reset;
/// - there is no servo power in teach mode;
/// - hold stops job and motion where they stand, loss of servo power too.
/// After every change of state the activities are told.
class ControllerModel {
public:
    /// The first four groups are the motion slots. Tools are numbered from 0.
    ControllerModel(ControllerVersion generation, int rs022, std::vector<ControlGroup> controlGroups,
                    std::size_t toolCount, Clock const& controllerClock);
    ControllerModel(ControllerModel const&) = delete;
    ControllerModel& operator=(ControllerModel const&) = delete;

    static constexpr std::size_t RegisterCount = 1000;
    static constexpr std::size_t PendantLength = 30;

    Clock const& clock;
    ControllerState state;
    Alarms alarms;
    ControlGroups const groups;
    Parameters parameters;
    Variables variables;
    Signals signals;
    std::array<std::uint16_t, RegisterCount> registers{};
    Frames frames;
    std::string pendantText; ///< the line that a program shows on the pendant, at most PendantLength bytes
    OperatingTimes times;

    /// Each activity is set once, before the first change of state.
    void SetJobActivity(JobActivity& job) { job_ = &job; }
    void SetMotionActivity(Activity& motion) { motion_ = &motion; }

    bool IsJobRunning() const { return job_ != nullptr && job_->IsRunning(); }
    bool IsMotionRunning() const { return motion_ != nullptr && motion_->IsRunning(); }
    bool IsRunning() const { return IsJobRunning() || IsMotionRunning(); }
    bool IsExecuting(std::string_view job) const { return job_ != nullptr && job_->IsExecuting(job); }
    bool IsFaulted() const { return alarms.IsActive() || state.error; }

    /// What somebody at the pendant or at the safety circuit does. Always possible; brings its consequences.
    void SetMode(Mode mode);
    void SetServo(bool on);
    void SetHold(HoldSource source, bool on);
    void SetCycle(CycleMode cycle);
    void SetError(bool on);

    /// The same by command from the network, which is refused where a controller would.
    Refusal CommandServo(bool on);
    Refusal CommandHold(bool on);
    Refusal CommandCycle(CycleMode cycle);

    /// `None` if nothing speaks against movement: remote mode, no alarm or error, no hold, servo power on.
    Refusal CheckReadyToMove() const;

    void RaiseAlarm(std::uint32_t code, std::uint32_t subcode, std::string_view name);
    void ResetAlarms();

    /// Brings the operating times up to now.
    void UpdateTimes();

private:
    Refusal HoldRefusal() const;
    void StateChanged();

    JobActivity* job_ = nullptr;
    Activity* motion_ = nullptr;
};

} // namespace harvlink::simulator
