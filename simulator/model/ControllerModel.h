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
#include "simulator/model/OperatingTimes.h"
#include "simulator/model/Parameters.h"
#include "simulator/model/Signals.h"
#include "simulator/model/TaughtFrames.h"
#include "simulator/model/Variables.h"
#include "simulator/protocol/Refusal.h"

namespace harvlink::simulator {

/// The state of a controller and everything that it remembers. Files, jobs and motion work on the model;
/// ControllerParts puts them together.
///
/// Not thread-safe: on a running server it is reached through VirtualController::With. Data members without interlocks
/// (variables, signals, frames) are changed directly; the state is changed only through the operations below, because
/// on a controller one change brings about others:
/// - an alarm drops servo power, and keeps it off until it is reset;
/// - there is no servo power in teach mode;
/// - hold stops job and motion where they stand, loss of servo power too. Every change of state is reported to the
///   activities.
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
    TaughtFrames frames;
    std::string pendantText; ///< the text that a program shows on the pendant, at most PendantLength bytes
    OperatingTimes times;

    /// Sets an activity. Call each once, before the first change of state.
    void SetJobActivity(JobActivity& job) { job_ = &job; }
    void SetMotionActivity(Activity& motion) { motion_ = &motion; }

    bool IsJobRunning() const { return job_ != nullptr && job_->IsRunning(); }
    bool IsMotionRunning() const { return motion_ != nullptr && motion_->IsRunning(); }
    bool IsRunning() const { return IsJobRunning() || IsMotionRunning(); }
    bool IsExecuting(std::string_view job) const { return job_ != nullptr && job_->IsExecuting(job); }
    bool IsFaulted() const { return alarms.IsActive() || state.error; }

    /// What an operator does at the pendant or at the safety circuit. Never refused; carries out the consequences too.
    void SetMode(Mode mode);
    void SetServo(bool on);
    void SetHold(HoldSource source, bool on);
    void SetCycle(CycleMode cycle);
    void SetError(bool on);

    /// The same by a command from the network. Refused where a real controller refuses it.
    Refusal CommandServo(bool on);
    Refusal CommandHold(bool on);
    Refusal CommandCycle(CycleMode cycle);

    /// `None` if the robot may move: remote mode, no alarm or error, no hold, servo power on.
    Refusal CheckReadyToMove() const;

    void RaiseAlarm(std::uint32_t code, std::uint32_t subcode, std::string_view name);
    void ResetAlarms();

    /// Counts the operating times up to now.
    void UpdateTimes();

private:
    Refusal HoldRefusal() const;
    void StateChanged();

    JobActivity* job_ = nullptr;
    Activity* motion_ = nullptr;
};

} // namespace harvlink::simulator
