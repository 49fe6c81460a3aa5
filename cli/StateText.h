#pragma once

#include "Output.h"
#include "harvlink/ControllerStateInterface.h"
#include "harvlink/FaultInterface.h"

namespace harvlink::cli {

/// The controller's state as fields: mode, cycle, running, hold, alarm, error, servo_on.
Json StateJson(ControllerStateData const& state);

/// One alarm as fields: code, subcode, time, name.
Json AlarmJson(AlarmData const& alarm);

} // namespace harvlink::cli
