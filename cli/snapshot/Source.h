#pragma once

#include <string_view>

#include <fmt/format.h>

#include "cli/output/Progress.h"
#include "cli/program/RepeatedRead.h"
#include "cli/snapshot/Snapshot.h"
#include "harvlink/QuorvanController.h"

namespace harvlink::cli::snapshot {

/// A controller from which thousands of values are read. Knows whether it still answers.
class Source {
public:
    Source(QuorvanController& controller, Progress& progress) : robot(controller), progress_(progress) {}

    QuorvanController& robot;

    /// Calls `read()`, and up to three more times if the answer was lost or damaged: among thousands of datagrams one may be.
    /// If there is no answer even then, the controller counts as gone.
    template <typename ReadOnce>
    StatusInfo Ask(std::string_view what, ReadOnce const& read) {
        StatusInfo status =
            ReadRepeatedly(progress_, fmt::format("Reading {}", what), [&] { return IsGone() ? reason_ : read(); });
        if (reason_.StatusCode == 0 && IsSilence(status)) {
            reason_ = status;
        }
        return status;
    }

    /// Whether to stop reading: the controller does not answer.
    bool IsGone() const { return reason_.StatusCode != 0; }

    /// Why it is gone.
    StatusInfo const& Reason() const { return reason_; }

private:
    Progress& progress_;
    StatusInfo reason_;
};

} // namespace harvlink::cli::snapshot
