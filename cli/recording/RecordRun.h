#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "cli/output/Output.h"
#include "cli/recording/Plan.h"
#include "recording/blackbox/BlackBox.h"
#include "recording/write/Recorder.h"

namespace harvlink::cli::recordings {

/// What `record` does: a recording, a black box, or both.
struct RecordPlan {
    std::vector<PlannedController> controllers;
    std::string out; ///< empty: no recording
    recording::RecorderOptions recorder;
    std::optional<recording::BlackBoxOptions> box;
    std::optional<std::chrono::microseconds> length; ///< until Ctrl-C without
};

/// Records until the time is over, the user ends it or the disk does. Returns the exit status.
int RunRecord(RecordPlan const& plan, Output& output);

} // namespace harvlink::cli::recordings
