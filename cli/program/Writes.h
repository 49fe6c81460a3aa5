#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/output/Output.h"
#include "harvlink/StatusInfo.h"

namespace harvlink::cli {

/// A value or file that is to be written. Writing it twice must be the same as writing it once.
struct PendingWrite {
    std::string name; ///< such as "B5"
    std::function<StatusInfo()> write;
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

/// Writes one after the other. A write whose answer is lost is repeated, up to three times. Three in a row that stay unanswered
/// end it, and so does Ctrl-C.
WriteReport WriteEach(Output& output, std::string_view what, std::vector<PendingWrite> const& writes,
                      AfterFailure afterFailure);

/// {written, failed, not_tried, failures: [{<key>, code, message}]}
Json ReportJson(WriteReport const& report, std::string_view key);

/// Shows each failure, and for people the counts that are not zero. Throws Interrupted if Ctrl-C ended the writing.
void ShowReport(Output& output, WriteReport const& report, std::string_view key);

/// Throws Interrupted if Ctrl-C ended the writing.
void ThrowIfInterrupted(WriteReport const& report);

} // namespace harvlink::cli
