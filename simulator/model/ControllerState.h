#pragma once

#include "harvlink/ControllerStateInterface.h"
#include "harvlink/ControllerVersion.h"

namespace harvlink::simulator {

using Mode = ControllerStateData::ControlMode;

/// The source of a hold. Motion continues when no source holds any more.
enum class HoldSource { Pendant, External, Command };

/// The state of the controller as a whole. Read it freely; change it through ControllerModel, which also carries out
/// the consequences of a change.
struct ControllerState {
    ControllerVersion generation = ControllerVersion::VersionYA;
    Mode mode = Mode::Remote;
    CycleMode cycle = CycleMode::Cycle;
    bool servoOn = false;
    bool pendantHold = false;
    bool externalHold = false;
    bool commandHold = false;
    bool error = false;

    bool IsHeld() const { return pendantHold || externalHold || commandHold; }
    bool HasExtendedCommands() const { return generation >= ControllerVersion::VersionYA; }
};

} // namespace harvlink::simulator
