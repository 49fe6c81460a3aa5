#include "cli/program/Writes.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "cli/output/Progress.h"
#include "cli/program/Interrupt.h"
#include "cli/program/RepeatedRead.h"

namespace harvlink::cli {

namespace {

constexpr std::size_t MostUnanswered = 3; ///< in a row, before nobody is there

StatusInfo Write(PendingWrite const& pending, Progress& progress, Interrupt const& interrupt) {
    StatusInfo status = pending.write();
    for (int repeat = 0; LostAnswer(status) && !interrupt.HasCome(); ++repeat) {
        bool isHeld = false;
        StatusInfo const read = ReadRepeatedly(progress, fmt::format("Reading {} back", pending.name),
                                               [&] { return pending.readBack(isHeld); });
        if (read.StatusCode != 0) {
            break;
        }
        if (isHeld) {
            return {};
        }
        if (repeat == MostRepeats || pending.afterLoss == AfterLoss::ReadBack) {
            status.Message += " Read back, the controller does not hold it.";
            break;
        }
        status = pending.write();
    }
    return status;
}

} // namespace

WriteReport WriteEach(Output& output, std::string_view what, std::vector<PendingWrite> const& writes,
                      AfterFailure afterFailure) {
    Interrupt const interrupt;
    Progress progress(output, what);
    WriteReport report;
    std::size_t unanswered = 0;
    auto next = writes.begin();
    for (; next != writes.end() && unanswered < MostUnanswered; ++next) {
        report.wasInterrupted = interrupt.HasCome();
        if (report.wasInterrupted || (afterFailure == AfterFailure::Stop && !report.failures.empty())) {
            break;
        }
        progress.Count(fmt::format("{} {},", what, next->name), static_cast<std::size_t>(next - writes.begin()) + 1,
                       writes.size());
        StatusInfo status = Write(*next, progress, interrupt);
        unanswered = IsSilence(status) ? unanswered + 1 : 0;
        if (status.StatusCode == 0) {
            ++report.written;
        } else {
            report.failures.push_back({next->name, status});
        }
    }
    std::transform(next, writes.end(), std::back_inserter(report.notTried),
                   [](PendingWrite const& left) { return left.name; });
    return report;
}

Json ReportJson(WriteReport const& report, std::string_view key) {
    Json failures = Json::array();
    for (WriteFailure const& failure : report.failures) {
        failures.push_back({{std::string(key), failure.name},
                            {"code", failure.status.StatusCode},
                            {"message", failure.status.Message}});
    }
    return {{"written", report.written},
            {"failed", report.failures.size()},
            {"not_tried", report.notTried.size()},
            {"failures", failures}};
}

void ShowReport(Output& output, WriteReport const& report, std::string_view key) {
    for (WriteFailure const& failure : report.failures) {
        output.Failure(failure.status, failure.name);
    }
    Json document = ReportJson(report, key);
    if (!output.json) {
        document.erase("failures");
        if (report.Succeeded()) {
            document = Json{{"written", report.written}};
        }
    }
    output.Show(document);
    ThrowIfInterrupted(report);
    if (!report.notTried.empty()) {
        output.Problem(fmt::format("{} were not tried, from {} on", report.notTried.size(), report.notTried.front()));
    }
}

void ThrowIfInterrupted(WriteReport const& report) {
    if (report.wasInterrupted) {
        throw Interrupted(fmt::format("interrupted; {} written, {} failed, {} not tried", report.written,
                                      report.failures.size(), report.notTried.size()));
    }
}

} // namespace harvlink::cli
