#pragma once

#include <optional>

#include "cli/output/Words.h"
#include "harvlink/QuorvanController.h"
#include "harvlink/StatusInfo.h"
#include "words/text/Json.h"

namespace harvlink::cli {

/// What the machine still executes after it was told to stop. Waits for at most a second and a half, as a motion slows down
/// before it ends.
// NOLINTNEXTLINE(bugprone-exception-escape): only moving the JSON, which does not throw
struct Remains {
    StatusInfo status; ///< of the reads
    bool isRunning = false;
    Json job; ///< {task, name, line} of the master task; null if no job runs, or if it can't be read
};

Remains ReadRemains(QuorvanController& robot);

} // namespace harvlink::cli
