#include "cli/watch/Board.h"

#include <algorithm>
#include <array>
#include <span>
#include <stdexcept>
#include <utility>

#include <arpa/inet.h>
#include <fmt/format.h>

#include "words/text/Text.h"

namespace harvlink::cli::watch {

namespace {

using std::chrono::milliseconds;

std::vector<FleetGroup> GroupsOf(milliseconds interval) {
    constexpr milliseconds Slow(1000);
    constexpr std::chrono::minutes Rare(1);
    return {{.period = interval, .items = {FleetItem::State(), FleetItem::Job()}},
            {.period = std::max(interval, Slow), .items = {FleetItem::Alarms()}},
            {.period = Rare, .items = {FleetItem::Software()}}};
}

bool IsAddress(std::string const& host) {
    in_addr address{};
    return ::inet_pton(AF_INET, host.c_str(), &address) == 1;
}

template <typename Value>
void Keep(FleetSample const& sample, std::optional<Value>& kept) {
    if (auto const* const value = std::get_if<Value>(&sample.value)) {
        kept = *value;
    }
}

} // namespace

CellRow::Rank CellRow::HowBad() const {
    if (problem || link == FleetState::Silent || link == FleetState::Refused) {
        return Rank::NoAnswer;
    }
    bool const hasAlarm =
        alarms && std::ranges::any_of(alarms->alarms, [](auto const& each) { return each.code != 0; });
    if (hasAlarm || (state && (state->isAlarming || state->isErroring))) {
        return Rank::Alarm;
    }
    if (link != FleetState::Online) {
        return Rank::Late;
    }
    return state && state->isProgramPendantHold ? Rank::Hold : Rank::Fine;
}

bool CellRow::IsSettled() const {
    return HowBad() == Rank::NoAnswer || isRead;
}

Board::Board(std::vector<FleetCell> cells, milliseconds interval) : cells_(std::move(cells)), interval_(interval) {
    if (StatusInfo const status = fleet_.Start(); status.StatusCode != 0) {
        throw std::runtime_error(status.Message);
    }
    for (FleetCell const& cell : cells_) {
        if (IsAddress(cell.options.address)) {
            Add(cell);
        } else {
            adding_.push_back(std::async(std::launch::async, [this, &cell] { Add(cell); }));
        }
    }
}

void Board::Add(FleetCell const& cell) {
    StatusInfo status = fleet_.Add(cell.name, cell.options, GroupsOf(interval_));
    if (status.StatusCode != 0) {
        std::lock_guard const lock(mutex_);
        refused_.emplace(cell.name, std::move(status));
    }
}

void Board::TakeEvents() {
    std::array<FleetEvent, 64> events;
    for (std::size_t count = 1; count > 0;) {
        count = fleet_.TakeEvents(events, milliseconds(0));
        for (FleetEvent const& event : std::span(events).first(count)) {
            if (event.kind == FleetEventKind::StateChanged) {
                codes_[event.controller] = event.code;
            }
        }
    }
}

std::vector<CellRow> Board::Rows() {
    TakeEvents();
    std::map<std::string, FleetControllerStatistics> seen;
    for (FleetControllerStatistics& each : fleet_.Statistics().controllers) {
        seen.emplace(each.controller, std::move(each));
    }
    std::vector<CellRow> rows;
    for (FleetCell const& cell : cells_) {
        rows.push_back(RowOf(cell, seen[cell.name]));
    }
    std::ranges::stable_sort(rows, {}, &CellRow::HowBad);
    return rows;
}

CellRow Board::RowOf(FleetCell const& cell, FleetControllerStatistics const& seen) const {
    CellRow row;
    row.cell = cell.name;
    row.host = cell.options.address;
    row.encoding = cell.encoding;
    row.link = seen.state;
    row.since = seen.stateSince;
    if (std::lock_guard const lock(mutex_); refused_.contains(cell.name)) {
        row.link = FleetState::Refused;
        row.problem = refused_.at(cell.name);
        return row;
    }
    row.isRead = row.link == FleetState::Online;
    for (FleetSample const& sample : fleet_.Latest(cell.name)) {
        row.isRead = row.isRead && sample.quality != FleetQuality::NeverRead;
        Keep(sample, row.state);
        Keep(sample, row.job);
        Keep(sample, row.alarms);
        if (sample.item.kind == FleetItemKind::Software) {
            row.problem = WrongGeneration(cell, sample.value);
        }
    }
    auto const code = codes_.find(cell.name);
    if (row.link == FleetState::Silent || row.link == FleetState::Refused) {
        row.problem = StatusInformation(code == codes_.end() ? 0 : code->second);
    }
    return row;
}

void Board::AwaitAll() {
    constexpr unsigned LeastRequests = 3; // of the start-up
    constexpr milliseconds Margin(2000);
    milliseconds longest(0);
    for (FleetCell const& cell : cells_) {
        milliseconds const timeout(cell.options.timeout);
        longest = std::max(longest, timeout * std::max(cell.options.retries + 1, LeastRequests));
    }
    auto const end = std::chrono::steady_clock::now() + 3 * longest + Margin;
    std::ranges::for_each(adding_, [](auto const& each) { each.wait(); });
    std::vector<FleetSample> samples(256);
    while (!std::ranges::all_of(Rows(), &CellRow::IsSettled) && std::chrono::steady_clock::now() < end) {
        constexpr milliseconds Pause(50);
        (void)fleet_.Take(samples, Pause);
    }
}

} // namespace harvlink::cli::watch
