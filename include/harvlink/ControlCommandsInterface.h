#pragma once

#include <cstdint>
#include <string>

#include "harvlink/ControllerStateInterface.h"
#include "harvlink/StatusInfo.h"

namespace harvlink {

/// On and off as the controller's hold and servo command counts them.
enum class SignalStatus : std::int32_t { On = 1, Off = 2 };

/// Switches of the controller. **They act on a real machine**: servo power and job start can move it.
///
/// Commands need the controller in remote mode. A refusal comes with the controller's own code. No answer gives
/// ResponseTimeout: it is then not known whether the command took effect, so read the state before you repeat it.
/// One exchange per call, at most (1 + retries) x time-out, except for SetServos. May be called from several threads.
class ControlCommandsInterface {
public:
    ControlCommandsInterface() = default;
    ControlCommandsInterface(ControlCommandsInterface const&) = delete;
    ControlCommandsInterface& operator=(ControlCommandsInterface const&) = delete;
    virtual ~ControlCommandsInterface() = default;

    /// Turns servo power on or off. The controller answers late, so all exchanges of the connection get four times the
    /// time-out while this one is under way. A refusal outside remote mode says so in its message. Two or three exchanges.
    virtual StatusInfo SetServos(SignalStatus state) = 0;

    /// Holds the running job, or releases the hold.
    virtual StatusInfo SetHold(SignalStatus state) = 0;

    /// Sets how a started job runs: a step, once, or again and again.
    virtual StatusInfo SetCycleMode(CycleMode mode) = 0;

    /// Shows a line on the pendant; silently cut to 30 bytes. Of the length only the low 16 bits are looked at.
    virtual StatusInfo DisplayStringToPendant(std::string const& text) = 0;

    /// Starts the job that JobInterface::SetActiveJob selected. A repetition may start it twice.
    virtual StatusInfo StartJob() = 0;
};

} // namespace harvlink
