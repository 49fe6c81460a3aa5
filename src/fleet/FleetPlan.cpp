#include "fleet/FleetPlan.h"

#include <chrono>

namespace harvlink::fleet {

FleetControllerPlan PlanOf(ControllerRecord const& controller) {
    constexpr double second = 1e9; // nanoseconds
    FleetControllerPlan plan;
    plan.controller = controller.name;
    for (Group const& group : controller.groups) {
        std::uint32_t const exchanges = controller.ExchangesPerRound(group);
        plan.exchangesPerSecond += exchanges * second / static_cast<double>(group.period);
        plan.groups.push_back({.period = std::chrono::nanoseconds(group.period),
                               .items = group.end - group.begin,
                               .exchangesPerRound = exchanges});
    }
    // Each lane carries one exchange at a time, and the requests of all of them keep their distance.
    double const between = second / plan.exchangesPerSecond;
    if (static_cast<double>(controller.Spacing()) <= between) {
        plan.longestRoundTrip = std::chrono::nanoseconds(static_cast<std::int64_t>(between * controller.options.lanes));
    }
    return plan;
}

} // namespace harvlink::fleet
