#pragma once

#include <string_view>

#include <fmt/format.h>

#include "cli/output/Progress.h"
#include "harvlink/StatusInfo.h"

namespace harvlink::cli {

/// How often a read is repeated whose answer was lost or damaged.
inline constexpr int MostRepeats = 3;

/// Whether an answer was lost or damaged on the way, so that the same read may succeed the next time.
inline bool LostAnswer(StatusInfo const& status) {
    auto const code = static_cast<ErrorStatusCodes>(status.StatusCode);
    return code == ErrorStatusCodes::ResponseTimeout || code == ErrorStatusCodes::FileBlockMissing ||
           code == ErrorStatusCodes::AnswerTooShort;
}

/// Whether nobody answers, the host says that nobody listens, or this computer has no way to it: whatever else is asked
/// would get no answer either.
inline bool IsSilence(StatusInfo const& status) {
    auto const code = static_cast<ErrorStatusCodes>(status.StatusCode);
    return code == ErrorStatusCodes::ResponseTimeout || code == ErrorStatusCodes::ControllerNotListening ||
           code == ErrorStatusCodes::SystemFailure;
}

/// Calls `read()`, and repeats it while it fails in that way: a read changes nothing, so it is safe to repeat. The
/// progress says so; a failure is only what the last call returns.
template <typename ReadOnce>
StatusInfo ReadRepeatedly(Progress& progress, std::string_view what, ReadOnce const& read) {
    progress.Show(what);
    StatusInfo status = read();
    for (int repeat = 1; repeat <= MostRepeats && LostAnswer(status); ++repeat) {
        progress.Show(fmt::format("{}, repeated {} of {} times", what, repeat, MostRepeats));
        status = read();
    }
    return status;
}

} // namespace harvlink::cli
