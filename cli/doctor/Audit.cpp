#include "cli/doctor/Audit.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <exception>
#include <string>
#include <vector>

#include "harvlink/harvlink.h"

namespace harvlink::cli {

namespace {

using Clock = std::chrono::steady_clock;

/// More than there are numbers of requests, as one of them is an edge of its own.
constexpr unsigned MostReadings = 150;
/// After this no further read begins. Opening a connection has its own bound.
constexpr std::chrono::seconds LongestLook{2};
constexpr int MostOpenings = 3;
constexpr int FirstAddedCode = 0x50000;

constexpr std::array<RuleMeaning, RuleCount> Meanings{{
    {"requests with number 0 got no answer, which counted as an answer of zeros"},
    {"answers came from another address or port than the one that was asked"},
    {"periods ended without the answer to a read; a strict connection asks again"},
    {"answers did not fit their request, by magic, division, header size, service or payload size"},
    {"datagrams that were not the answer ended a period of listening"},
    {"exchanges timed out; a late answer could count for another request"},
    {"answers were shorter than their record, and zeros took the place of the rest"},
    {"blocks of a file came twice or out of order, or the file was too large"},
    {"groups or tools could not be read when the connection opened"},
    {"threads that feed motion kept a processor busy while they were idle", true},
    {"steps left the queue of motion that had not been sent", true},
    {"waits for room in the controller's buffer had no bound", true},
    {"operations ended in an exception"},
}};

/// Whether the link or a rule caused the failure. A refusal by the controller is as good an answer as any.
bool IsFailureOfStrict(StatusInfo const& status) {
    return status.StatusCode == static_cast<int>(ErrorStatusCodes::ResponseTimeout) ||
           (status.StatusCode >= FirstAddedCode && status.StatusCode < FirstAddedCode + 0x10000);
}

/// Reads a little of all that can be read, and keeps the first failure.
class Look {
public:
    Look(QuorvanController& robot, std::function<bool()> const& goesOn) : robot_(robot), goesOn_(goesOn) {}

    StatusInfo Run(unsigned readings) {
        ReadTables();
        ReadFirstJob();
        ControllerStateData state;
        for (unsigned reading = 0; reading < readings; ++reading) {
            Read([&] { return robot_.Status->ReadState(state); });
        }
        return failure_;
    }

private:
    void ReadTables() {
        SystemInfoData information;
        TimeData time;
        PositionData position;
        ActiveAlarms alarms;
        Read([&] { return robot_.Status->ReadSystemInformation(SystemInfoId::Robot1, information); });
        Read([&] {
            return robot_.Status->ReadOperatingTimes(ControlGroupId::R1, TimeType::ControlPower, time,
                                                     ApplicationNumber::None);
        });
        Read([&] {
            return robot_.ControlGroup->ReadPositionData(ControlGroupId::R1, CoordinateType::Pulse, 0, 0, position);
        });
        Read([&] { return robot_.Faults->GetActiveAlarms(alarms); });
    }

    void ReadFirstJob() {
        std::vector<std::string> jobs;
        std::string contents;
        Read([&] { return robot_.Files->ListFiles(FileType::JobFile, jobs, true); });
        if (!jobs.empty()) {
            Read([&] { return robot_.Files->SaveFromControllerToString(jobs.front(), contents); });
        }
    }

    template <typename ReadOnce>
    void Read(ReadOnce const& read) {
        if (Clock::now() >= end_ || !goesOn_()) {
            return;
        }
        try {
            StatusInfo status = read();
            if (failure_.StatusCode == 0 && IsFailureOfStrict(status)) {
                failure_ = std::move(status);
            }
        } catch (std::exception const&) {
            // As designed, an unreadable operating time ends in an exception. Its rule counts it.
        }
    }

    QuorvanController& robot_;
    std::function<bool()> const& goesOn_;
    Clock::time_point end_ = Clock::now() + LongestLook;
    StatusInfo failure_;
};

/// Opens a connection for an audit, up to three times: as designed, one lost answer is enough to fail.
Connection OpenAudited(ConnectOptions const& options, StatusInfo& status) {
    Connection connection = Connect(options, status);
    for (int attempt = 1; attempt < MostOpenings && !connection; ++attempt) {
        connection = Connect(options, status);
    }
    return connection;
}

} // namespace

RuleMeaning const& MeaningOf(Rule rule) {
    return Meanings.at(static_cast<std::size_t>(std::countr_zero(static_cast<std::uint32_t>(rule))));
}

AuditReport AuditController(ConnectOptions const& options, unsigned readings, std::function<bool()> const& goesOn) {
    ConnectOptions wanted = options;
    wanted.access = Access::Observe;
    wanted.rules = StrictRules;
    wanted.logging = false;
    wanted.audit = true;
    AuditReport report{.isDone = true};
    if (Connection const audited = OpenAudited(wanted, report.designed)) {
        Look(*audited, goesOn).Run(std::min(readings, MostReadings));
        ConnectionStatistics const statistics = audited->GetConnectionStatistics();
        report.exchanges = statistics.exchanges;
        report.counts = statistics.ruleCounts;
    }
    wanted.audit = false;
    if (Connection const strict = Connect(wanted, report.strict)) {
        report.strict = Look(*strict, goesOn).Run(std::min(readings, MostReadings));
        report.strictExchanges = strict->GetConnectionStatistics().exchanges;
    }
    return report;
}

} // namespace harvlink::cli
