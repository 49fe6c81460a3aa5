#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/Clock.h"
#include "simulator/ControllerOptions.h"
#include "simulator/Refusal.h"
#include "simulator/files/FileStore.h"
#include "simulator/jobs/JobEngine.h"
#include "simulator/model/Alarms.h"
#include "simulator/model/ControlGroups.h"
#include "simulator/model/ControllerState.h"
#include "simulator/model/Frames.h"
#include "simulator/model/OperatingTimes.h"
#include "simulator/model/Parameters.h"
#include "simulator/model/Signals.h"
#include "simulator/model/Variables.h"
#include "simulator/motion/MotionEngine.h"

namespace harvlink::simulator {

/// All that a controller remembers and does, without the network. The handlers translate datagrams into calls of this.
///
/// Not thread-safe: on a running server it is reached through VirtualController::With. Data members without interlocks
/// (variables, signals, frames) are changed directly; the state only through the operations below, which carry out what
/// hangs together on a controller:
/// - an alarm drops servo power, and keeps it off until it is reset;
/// - there is no servo power in teach mode;
/// - hold stops job and motion where they stand, loss of servo power too.
/// After every change of state JobEngine::OnStateChange and MotionEngine::OnStateChange are called.
class ControllerModel {
public:
    ControllerModel(ControllerOptions const& controllerOptions, Clock const& controllerClock);
    ControllerModel(ControllerModel const&) = delete;
    ControllerModel& operator=(ControllerModel const&) = delete;

    static constexpr std::size_t RegisterCount = 1000;
    static constexpr std::size_t PendantLength = 30;

    ControllerOptions const options;
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
    FileStore files;
    JobEngine jobs;
    MotionEngine motion;

    bool IsRunning() const { return jobs.IsRunning() || motion.IsRunning(); }
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
    Refusal CommandStartJob();

    /// `None` if nothing speaks against movement: remote mode, no alarm or error, no hold, servo power on.
    Refusal CheckReadyToMove() const;

    void RaiseAlarm(std::uint32_t code, std::uint32_t subcode, std::string_view name);
    void ResetAlarms();

    /// Whether Tick has anything to do. The server asks after every datagram.
    bool NeedsTicks() const { return jobs.NeedsTicks() || motion.NeedsTicks(); }

    /// Lets jobs and motion advance to the clock's time. Called about every millisecond while NeedsTicks, and before
    /// every datagram.
    void Tick();

    /// Brings the operating times up to now.
    void UpdateTimes();

private:
    Refusal HoldRefusal() const;
    void StateChanged();
};

} // namespace harvlink::simulator
