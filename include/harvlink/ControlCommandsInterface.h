#pragma once

#include <cstdint>
#include <string>

#include "harvlink/ControllerStateInterface.h"
#include "harvlink/StatusInfo.h"

namespace harvlink {

/// On and off with the numbers of the controller's hold and servo commands.
enum class SignalStatus : std::int32_t { On = 1, Off = 2 };

/// Switches of the controller. **They act on a real machine**: servo power and job start can move it.
///
/// Servo power, releasing a hold, cycle mode and start need the controller in remote mode; whether it takes the others in
/// other modes is up to the controller. A refusal comes with the controller's own code. Without an answer the code is
/// ResponseTimeout: it is then not known whether the command took effect, so read the state before you repeat it. One
/// exchange per call, at most (1 + retries) x time-out, except for SetServos. May be called from several threads at once.
class ControlCommandsInterface {
public:
    ControlCommandsInterface() = default;
    ControlCommandsInterface(ControlCommandsInterface const&) = delete;
    ControlCommandsInterface& operator=(ControlCommandsInterface const&) = delete;
    virtual ~ControlCommandsInterface() = default;

    /// Turns servo power on or off. The controller answers late: while this exchange runs, all exchanges of the
    /// connection have four times the time-out. Do not call it from two threads at once: they would multiply the
    /// time-out twice. A refusal outside remote mode says so in its message. Two exchanges, three after a failure.
    virtual StatusInfo SetServos(SignalStatus state) = 0;

    /// Holds the running job, or releases the hold.
    virtual StatusInfo SetHold(SignalStatus state) = 0;

    /// Sets how a started job runs: a step, once, or again and again.
    virtual StatusInfo SetCycleMode(CycleMode mode) = 0;

    /// Shows a line on the pendant, cut to 30 bytes without a notice. Only the low 16 bits of its length count: 65540
    /// bytes are shown as 4.
    virtual StatusInfo DisplayStringToPendant(std::string const& text) = 0;

    /// Starts the job that JobInterface::SetActiveJob selected. A repetition may start it twice.
    virtual StatusInfo StartJob() = 0;
};

} // namespace harvlink
