#pragma once

#include "status/ErrorTables.h"
#include "status/GetStatusInfo.h"

namespace harvlink {

/// Reads a status against the motion table.
inline void FoldMotionStatus(StatusInfo& status) {
    HelperFunction::GetStatusInfo(status, MotionErrorTable, MotionErrorOffset);
}

} // namespace harvlink
