#include "wire/LinkStatistics.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <span>

namespace harvlink {
namespace {

using std::chrono::nanoseconds;
using std::chrono::system_clock;

/// Of sorted times, the least that this part of them does not exceed.
std::uint32_t Percentile(std::span<std::uint32_t const> sorted, std::size_t percent) {
    return sorted[(sorted.size() * percent + 99) / 100 - 1];
}

} // namespace

LinkStatistics::LinkStatistics() {
    SetState(LinkState::Online);
}

void LinkStatistics::Count(Rule rule) {
    ruleCounts[static_cast<std::size_t>(std::countr_zero(static_cast<std::uint32_t>(rule)))].fetch_add(
        1, std::memory_order_relaxed);
}

void LinkStatistics::NoteAnswer(std::chrono::steady_clock::duration roundTrip) {
    auto const microseconds = std::chrono::duration_cast<std::chrono::microseconds>(roundTrip).count();
    std::uint64_t const number = answers.load(std::memory_order_relaxed);
    roundTrips[number % roundTripCount].store(static_cast<std::uint32_t>(std::clamp<std::int64_t>(
                                                  microseconds, 0, std::numeric_limits<std::uint32_t>::max())),
                                              std::memory_order_relaxed);
    answers.store(number + 1, std::memory_order_release);
    if (silencesInARow.load(std::memory_order_relaxed) >= silentAfter) {
        SetState(LinkState::Online);
    }
    silencesInARow.store(0, std::memory_order_relaxed);
}

void LinkStatistics::NoteSilence() {
    unsigned const inARow = std::min(silencesInARow.load(std::memory_order_relaxed), silentAfter) + 1;
    silencesInARow.store(inARow, std::memory_order_relaxed);
    if (inARow == silentAfter) {
        SetState(LinkState::Silent);
    }
}

void LinkStatistics::SetState(LinkState state) {
    auto const now = std::chrono::duration_cast<nanoseconds>(system_clock::now().time_since_epoch()).count();
    stateAndTime.store((now & ~std::int64_t{1}) | static_cast<std::int64_t>(state), std::memory_order_relaxed);
}

ConnectionStatistics LinkStatistics::Snapshot() const {
    auto const value = [this](LinkCounter counter) {
        return counters[static_cast<std::size_t>(counter)].load(std::memory_order_relaxed);
    };
    ConnectionStatistics result;
    result.exchanges = value(LinkCounter::Exchanges);
    result.timeouts = value(LinkCounter::Timeouts);
    result.lateAnswers = value(LinkCounter::LateAnswers);
    result.doubledAnswers = value(LinkCounter::DoubledAnswers);
    result.foreignAnswers = value(LinkCounter::ForeignAnswers);
    result.malformedAnswers = value(LinkCounter::MalformedAnswers);
    result.repeatedRequests = value(LinkCounter::RepeatedRequests);
    result.startUpRetries = value(LinkCounter::StartUpRetries);
    result.blocksReceived = value(LinkCounter::BlocksReceived);
    result.blocksSent = value(LinkCounter::BlocksSent);
    result.bytesReceived = value(LinkCounter::BytesReceived);
    result.bytesSent = value(LinkCounter::BytesSent);
    result.roundTrip = RoundTrips();
    std::ranges::transform(ruleCounts, result.ruleCounts.begin(),
                           [](auto const& count) { return count.load(std::memory_order_relaxed); });
    std::int64_t const state = stateAndTime.load(std::memory_order_relaxed);
    result.linkState = static_cast<LinkState>(state & 1);
    result.linkStateSince = system_clock::time_point(
        std::chrono::duration_cast<system_clock::duration>(nanoseconds(state & ~std::int64_t{1})));
    return result;
}

RoundTripTimes LinkStatistics::RoundTrips() const {
    auto const count =
        static_cast<std::size_t>(std::min<std::uint64_t>(answers.load(std::memory_order_acquire), roundTripCount));
    if (count == 0) {
        return {};
    }
    std::array<std::uint32_t, roundTripCount> times{};
    std::ranges::transform(roundTrips, times.begin(),
                           [](auto const& time) { return time.load(std::memory_order_relaxed); });
    std::span const sorted(times.data(), count);
    std::ranges::sort(sorted);
    return {static_cast<std::uint32_t>(count), sorted.front(), Percentile(sorted, 50), Percentile(sorted, 95),
            sorted.back()};
}

} // namespace harvlink
