#include "fleet/ControllerRecord.h"

#include <algorithm>
#include <map>
#include <utility>

#include "fleet/Query.h"

namespace harvlink::fleet {
namespace {

using std::chrono::nanoseconds;
using std::chrono::system_clock;

/// An item with the place of the first of its group that the same datagram answers.
struct Placed {
    Item item;
    std::size_t sharesWith = 0;
    double deadBand = 0.0;
};

struct LessQuery {
    bool operator()(Query const& left, Query const& right) const {
        return std::memcmp(&left, &right, offsetof(Query, payloadSize)) < 0;
    }
};

/// Puts those that share a datagram together, and leaves the order as it is otherwise.
std::vector<Placed> Place(FleetGroup const& group, std::uint8_t number) {
    std::vector<Placed> placed;
    std::map<Query, std::size_t, LessQuery> firstOf;
    ControllerFacts const anyFacts;
    for (FleetItem const& asked : group.items) {
        for (std::uint32_t i = 0; i < asked.count; ++i) {
            Item item = MakeItem(asked, i);
            item.group = number;
            std::size_t shared = placed.size();
            if (item.Parts() == 1) {
                shared = firstOf.try_emplace(QueryFor(item, 0, anyFacts), shared).first->second;
            }
            item.startsDatagram = shared == placed.size();
            item.hasDeadBand = asked.deadBand > 0.0;
            placed.push_back({item, shared, asked.deadBand});
        }
    }
    std::ranges::stable_sort(placed, {}, &Placed::sharesWith);
    return placed;
}

} // namespace

ControllerRecord::ControllerRecord(std::uint32_t recordId, std::string recordName, FleetControllerOptions given,
                                   Endpoint const& host, std::vector<FleetGroup> const& fleetGroups)
    : id(recordId),
      name(std::move(recordName)),
      options(std::move(given)),
      endpoint(host),
      items(MakeItems(fleetGroups)),
      table(items),
      stateSince(std::chrono::duration_cast<nanoseconds>(system_clock::now().time_since_epoch()).count()) {}

std::vector<Item> ControllerRecord::MakeItems(std::vector<FleetGroup> const& fleetGroups) {
    std::vector<Item> made;
    for (FleetGroup const& asked : fleetGroups) {
        Group& group = groups.emplace_back();
        group.period = asked.period.count();
        group.longestSilence = nanoseconds(asked.longestSilence).count();
        group.onChange = asked.onChange;
        group.begin = static_cast<std::uint32_t>(made.size());
        for (Placed const& placed : Place(asked, static_cast<std::uint8_t>(groups.size() - 1))) {
            if (placed.item.hasDeadBand) {
                deadBands.push_back({static_cast<std::uint32_t>(made.size()), placed.deadBand});
            }
            made.push_back(placed.item);
        }
        group.end = static_cast<std::uint32_t>(made.size());
    }
    made.shrink_to_fit();
    return made;
}

std::int64_t ControllerRecord::Spacing() const {
    constexpr double second = 1e9;
    double const most = options.mostRequestsPerSecond;
    auto const byRate = most > 0.0 ? static_cast<std::int64_t>(second / most) : std::int64_t{0};
    return std::max(nanoseconds(options.gap).count(), byRate);
}

std::int64_t ControllerRecord::Patience() const {
    constexpr double share = 1.0 / 32.0; // of what its periods leave for an exchange
    double exchangesPerNanosecond = 0.0;
    for (Group const& group : groups) {
        exchangesPerNanosecond += ExchangesPerRound(group) / static_cast<double>(group.period);
    }
    double const between = std::max(1.0 / exchangesPerNanosecond, static_cast<double>(Spacing()));
    return static_cast<std::int64_t>(between * options.lanes * share);
}

std::uint32_t ControllerRecord::ExchangesPerRound(Group const& group) const {
    std::uint32_t count = 0;
    for (std::uint32_t i = group.begin; i < group.end; ++i) {
        count += items[i].startsDatagram ? items[i].Parts() : 0;
    }
    return count;
}

} // namespace harvlink::fleet
