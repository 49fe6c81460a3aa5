#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/output/Output.h"
#include "harvlink/StatusInfo.h"

namespace harvlink::cli {

/// What may follow a write whose answer is lost, so that nobody knows whether it acted.
enum class AfterLoss {
    /// It is read back, and written again if the controller does not hold it. Where another program has changed it meanwhile,
    /// it is then written a second time.
    WriteAgain,
    /// It is read back, to report what became of it, and never written again: whatever waits for it might act twice.
    ReadBack,
};

/// A value or file that is to be written.
struct PendingWrite {
    std::string name; ///< such as "B5"
    std::function<StatusInfo()> write;
    std::function<StatusInfo(bool& isHeld)> readBack; ///< whether the controller holds what was to be written
    AfterLoss afterLoss = AfterLoss::ReadBack;
};

struct WriteFailure {
    std::string name;
    StatusInfo status;
};

struct WriteReport {
    std::size_t written = 0;
    std::vector<WriteFailure> failures;
    std::vector<std::string> notTried; ///< after a controller that no longer answers, Ctrl-C, or a failure
    bool wasInterrupted = false;

    bool Succeeded() const { return failures.empty() && notTried.empty(); }
};

enum class AfterFailure { GoOn, Stop };

/// Writes one after the other. A write whose answer is lost is read back, and repeated up to three times if it may be. Three
/// in a row that stay unanswered end it, and so does Ctrl-C.
WriteReport WriteEach(Output& output, std::string_view what, std::vector<PendingWrite> const& writes,
                      AfterFailure afterFailure);

/// {written, failed, not_tried, failures: [{<key>, code, message}]}
Json ReportJson(WriteReport const& report, std::string_view key);

/// Shows each failure, and for people the counts that are not zero. Throws Interrupted if Ctrl-C ended the writing.
void ShowReport(Output& output, WriteReport const& report, std::string_view key);

/// Throws Interrupted if Ctrl-C ended the writing.
void ThrowIfInterrupted(WriteReport const& report);

} // namespace harvlink::cli
