#pragma once

#include <chrono>
#include <cstdint>
#include <future>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "cli/program/FleetCells.h"
#include "harvlink/Fleet.h"

namespace harvlink::cli::watch {

/// What is known of one of many controllers.
struct CellRow {
    using Time = std::chrono::system_clock::time_point;

    std::string cell;
    std::string host;
    std::string encoding; ///< of the texts below
    FleetState link = FleetState::Connecting;
    Time since{}; ///< of the link's state
    std::optional<StatusInfo> problem; ///< why the controller can't be watched, or does not answer

    // Empty if it was never read, or is refused. If the link is not online, the last that was read.
    std::optional<ControllerStateData> state;
    std::optional<JobData> job;
    std::optional<ActiveAlarms> alarms;
    bool isRead = false; ///< all of these were read, or refused

    /// The worst comes first: no answer, an alarm or error, an answer that is late, a hold, all others.
    enum class Rank : std::uint8_t { NoAnswer, Alarm, Late, Hold, Fine };
    Rank HowBad() const;

    /// Whether what there is to know of it is known.
    bool IsSettled() const;
};

/// Watches controllers by a fleet and says how they are.
class Board {
public:
    /// Begins at once. Names of hosts are resolved beside each other. Throws std::runtime_error if the computer gives no means.
    Board(std::vector<FleetCell> cells, std::chrono::milliseconds interval);

    /// The worst first, those that are equally bad in the order of the cells.
    std::vector<CellRow> Rows();

    /// Waits until every controller has been read or does not answer; with a bound, as one may answer now and then.
    void AwaitAll();

    std::chrono::milliseconds Interval() const { return interval_; }

private:
    void Add(FleetCell const& cell);
    void TakeEvents();
    CellRow RowOf(FleetCell const& cell, FleetControllerStatistics const& seen) const;

    std::vector<FleetCell> cells_;
    std::chrono::milliseconds interval_;
    Fleet fleet_;
    std::map<std::string, std::int32_t> codes_; ///< by cell: of its last change of state
    mutable std::mutex mutex_;
    std::map<std::string, StatusInfo> refused_; ///< by cell: why it can't be watched
    std::vector<std::future<void>> adding_; ///< last: they end first
};

} // namespace harvlink::cli::watch
