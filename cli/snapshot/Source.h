#pragma once

#include <chrono>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "cli/output/Progress.h"
#include "cli/program/Interrupt.h"
#include "cli/snapshot/Snapshot.h"
#include "harvlink/QuorvanController.h"

namespace harvlink::cli::snapshot {

/// A controller from which thousands of values are read. Knows whether it still answers.
class Source {
public:
    Source(QuorvanController& controller, Progress& progress, Interrupt const& interrupt)
        : robot(controller), progress_(progress), interrupt_(interrupt) {}

    QuorvanController& robot;

    /// Calls `read()`, up to three times if there is no answer: among thousands of datagrams one may get lost, and a read
    /// may be repeated. After that the controller counts as gone.
    template <typename ReadOnce>
    StatusInfo Ask(std::string_view what, ReadOnce const& read) {
        progress_.Show(fmt::format("Reading {}", what));
        for (int attempt = 0; attempt < Attempts && !IsGone(); ++attempt) {
            StatusInfo status = read();
            if (!IsSilence(status)) {
                return status;
            }
            if (attempt + 1 == Attempts) {
                reason_ = std::move(status);
            }
        }
        return reason_;
    }

    /// Whether to stop reading: the controller does not answer, or the user has pressed Ctrl-C.
    bool IsGone() {
        if (reason_.StatusCode == 0 && interrupt_.Wait(std::chrono::milliseconds(0))) {
            reason_ = StatusInformation(ErrorStatusCodes::OperationInterrupted, "Interrupted.");
        }
        return reason_.StatusCode != 0;
    }

    /// Why it is gone.
    StatusInfo const& Reason() const { return reason_; }

private:
    static constexpr int Attempts = 3;

    static bool IsSilence(StatusInfo const& status) {
        return status.StatusCode == static_cast<int>(ErrorStatusCodes::ResponseTimeout);
    }

    Progress& progress_;
    Interrupt const& interrupt_;
    StatusInfo reason_;
};

} // namespace harvlink::cli::snapshot
