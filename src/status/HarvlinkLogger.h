#pragma once

#include <string>

#include "harvlink/StatusInfo.h"

namespace harvlink {

/// Records failures that have no caller to return to: one line per status, appended to "HarvlinkLog.txt" in the
/// working directory. Holds no state and no lock: each line is written through a stream of its own.
class HarvlinkLogger {
public:
    /// Appends one line. Never fails visibly.
    static void LogStatusInfo(StatusInfo const& status);

    /// "<date> <time>". The date is UTC and the time is local, so near midnight they may belong to different days.
    static std::string GetFormattedTime();

    /// Year, month and day of the UTC date, without leading zeros, such as "2026/11/4".
    static std::string CurrentDate();

    /// Hours, minutes and seconds of the local time, without leading zeros, such as "9:5:7".
    static std::string CurrentLocalTime();
};

} // namespace harvlink
