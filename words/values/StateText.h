#pragma once

#include "harvlink/ControllerStateInterface.h"
#include "harvlink/FaultInterface.h"
#include "words/text/Json.h"

namespace harvlink::words {

/// The controller's state as fields: mode, cycle, running, hold, alarm, error, servo_on.
Json StateJson(ControllerStateData const& state);

/// One alarm as fields: code, subcode, time, name.
Json AlarmJson(AlarmData const& alarm);

} // namespace harvlink::words
