#include "gateway/program/Bill.h"

#include <chrono>
#include <map>
#include <tuple>

#include <fmt/format.h>

#include "harvlink/Fleet.h"

namespace harvlink::gateway {

namespace {

/// A controller on a local network answers within this.
constexpr std::chrono::milliseconds UsualRoundTrip(4);

/// Controllers that cost the same make one line.
struct Line {
    std::string first;
    std::size_t count = 0;
    FleetControllerPlan plan;
};

std::string OverrunText(FleetControllerPlan const& plan) {
    using Milliseconds = std::chrono::duration<double, std::milli>;
    double const longest = Milliseconds(plan.longestRoundTrip).count();
    if (longest <= 0.0) {
        return "overruns always: its gap or its limit of requests rules its periods out";
    }
    return plan.longestRoundTrip < UsualRoundTrip
               ? fmt::format("expect overruns: they begin at a round trip of {:.1f} ms, and 1 to 4 ms are usual",
                             longest)
               : fmt::format("no overruns up to a round trip of {:.1f} ms", longest);
}

std::string LineText(Line const& line) {
    std::string groups;
    for (FleetGroupPlan const& group : line.plan.groups) {
        groups += fmt::format("    every {:>8} ms: {} items in {} exchanges\n",
                              std::chrono::duration<double, std::milli>(group.period).count(), group.items,
                              group.exchangesPerRound);
    }
    std::string const others = line.count > 1 ? fmt::format(" and {} others like it", line.count - 1) : "";
    return fmt::format("  {}{}: {:.1f} exchanges a second each; {}\n{}", line.first, others,
                       line.plan.exchangesPerSecond, OverrunText(line.plan), groups);
}

} // namespace

std::string BillOf(Config const& config) {
    Fleet fleet({.queueCapacity = 2, .eventCapacity = 2});
    unsigned number = 0;
    for (ControllerConfig const& controller : config.controllers) {
        FleetControllerOptions options = controller.options;
        ++number;
        // In place of a name, which would have to be resolved.
        options.address = fmt::format("127.{}.{}.{}", 1 + number / 62500, number / 250 % 250, 1 + number % 250);
        fleet.Add(controller.name, options, config.GroupsOf(controller));
    }
    FleetPlan const plan = fleet.Plan();
    std::map<std::tuple<double, std::int64_t, std::size_t>, Line> lines;
    for (FleetControllerPlan const& each : plan.controllers) {
        std::size_t items = 0;
        for (FleetGroupPlan const& group : each.groups) {
            items = items * 1000 + group.items;
        }
        Line& line = lines[{each.exchangesPerSecond, each.longestRoundTrip.count(), items}];
        if (line.count++ == 0) {
            line.first = each.controller;
            line.plan = each;
        }
    }
    std::string text = fmt::format("{} controllers, {:.1f} exchanges a second, {} descriptors\n",
                                   config.controllers.size(), plan.exchangesPerSecond, plan.descriptors);
    for (auto const& [key, line] : lines) {
        text += LineText(line);
    }
    return text;
}

} // namespace harvlink::gateway
