#include "fleet/PublicSample.h"

#include <algorithm>
#include <chrono>

namespace harvlink::fleet {
namespace {

using std::chrono::system_clock;

system_clock::time_point TimeOf(std::int64_t nanoseconds) {
    return system_clock::time_point(
        std::chrono::duration_cast<system_clock::duration>(std::chrono::nanoseconds(nanoseconds)));
}

/// A code of the controller becomes what the interface that reads the same makes of it.
std::int32_t PublicCode(Item const& item, Stamp const& stamp) {
    constexpr std::int32_t lastOfController = 0xffff;
    bool const isOfController = stamp.quality == FleetQuality::Refused && stamp.code <= lastOfController;
    return isOfController ? RefusalCode(item, stamp.code) : stamp.code;
}

double RateOf(std::uint64_t interval) {
    constexpr double second = 1e9;
    return interval == 0 ? 0.0 : second / static_cast<double>(interval);
}

} // namespace

void ToPublic(ControllerRecord const& controller, std::uint32_t place, Stamp const& stamp,
              std::span<std::byte const> record, FleetSample& sample) {
    Item const& item = controller.items[place];
    sample.controller = controller.name;
    sample.group = item.group;
    sample.item = ToPublic(item);
    sample.quality = stamp.quality;
    sample.code = PublicCode(item, stamp);
    sample.value = {};
    sample.answerTime = TimeOf(stamp.answerTime);
    sample.requestTime = sample.answerTime - std::chrono::microseconds(stamp.roundTrip);
    if (stamp.quality == FleetQuality::Good || stamp.quality == FleetQuality::Stale) {
        Reading reading = ReadRecord(item, record);
        sample.value = std::move(reading.value);
        if (reading.code != 0) {
            sample.quality = FleetQuality::Refused;
            sample.code = reading.code;
        }
    }
}

void ToPublic(ControllerRecord const& controller, RawEvent const& raw, FleetEvent& event) {
    event.controller = controller.name;
    event.kind = raw.kind;
    event.time = TimeOf(raw.time);
    event.before = raw.before;
    event.after = raw.after;
    event.code = raw.code;
    event.text = raw.text.data();
}

FleetControllerStatistics StatisticsOf(ControllerRecord const& controller) {
    FleetControllerStatistics seen;
    seen.controller = controller.name;
    seen.state = controller.state.load(std::memory_order_relaxed);
    seen.stateSince = TimeOf(controller.stateSince.load(std::memory_order_relaxed));
    seen.exchanges = controller.exchanges.Get();
    seen.timeouts = controller.timeouts.Get();
    seen.repeatedRequests = controller.repeatedRequests.Get();
    seen.lateAnswers = controller.lateAnswers.Get();
    seen.malformedAnswers = controller.malformedAnswers.Get();
    seen.refusals = controller.refusals.Get();
    seen.startUps = controller.startUps.Get();
    for (Group const& group : controller.groups) {
        seen.groups.push_back({.rounds = group.rounds.Get(),
                               .overruns = group.overruns.Get(),
                               .effectiveRate = RateOf(group.interval.Get()),
                               .lastRound = std::chrono::nanoseconds(group.lastRound.Get())});
    }
    return seen;
}

void AppendLatest(ControllerRecord const& controller, std::vector<FleetSample>& samples) {
    std::array<std::byte, LargestRecord> record{};
    for (std::uint32_t i = 0; i < controller.items.size(); ++i) {
        Stamp const stamp = controller.table.Read(controller.items[i], record);
        ToPublic(controller, i, stamp, std::span(record).first(stamp.size), samples.emplace_back());
    }
}

} // namespace harvlink::fleet
