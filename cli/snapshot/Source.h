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

/// A controller that thousands of values are read from, and what goes wrong meanwhile.
class Source {
public:
    Source(QuorvanController& controller, Progress& progress, Interrupt const& interrupt)
        : robot(controller), progress_(progress), interrupt_(interrupt) {}

    QuorvanController& robot;

    /// Reads by `read()`, up to three times if nobody answers: among thousands of datagrams one gets lost, and reading twice
    /// is safe. After that the controller counts as gone.
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

    /// Whether there is no use in asking for anything more: nobody answers, or the user has had enough.
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
