#pragma once

#include <cstdint>

#include "harvlink/StatusInfo.h"
#include "status/StatusTable.h"

namespace harvlink::HelperFunction {

/// Reads a failed status in the context of a subsystem: a code of its table gets the table's text and has `offset`
/// subtracted, in wrapping 32-bit arithmetic, so that the caller sees both the subsystem and the controller's number.
/// Success, and a code that the table does not know, stay as they are.
void GetStatusInfo(StatusInfo& status, StatusTable<std::int32_t> const& table, unsigned offset);

} // namespace harvlink::HelperFunction
