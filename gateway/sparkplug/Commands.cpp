#include "gateway/sparkplug/Commands.h"

#include <fmt/format.h>

#include "gateway/sparkplug/Metrics.h"

namespace harvlink::gateway::sparkplug {

namespace {

constexpr std::size_t LongestPayload = 1U << 20U; ///< bytes; a request to be born again has about thirty
constexpr std::size_t LongestName = 100; ///< of a name in the log

std::string NameOf(proto::Metric const& metric) {
    return metric.has_name() ? metric.name().substr(0, LongestName) : fmt::format("alias {}", metric.alias());
}

void Add(Commands& commands, proto::Metric const& metric) {
    if (metric.name() == RebirthMetric) {
        // False asks for nothing, and so does a value of another type.
        commands.wantsRebirth = commands.wantsRebirth || metric.boolean_value();
    } else if (commands.refused.size() < Commands::MostRefused) {
        commands.refused.push_back(NameOf(metric));
    }
}

} // namespace

Commands ParseCommands(std::string_view payload) {
    Commands commands;
    proto::Payload message;
    if (payload.size() > LongestPayload || !message.ParseFromArray(payload.data(), static_cast<int>(payload.size()))) {
        commands.refused.emplace_back("a payload that can't be decoded");
        return commands;
    }
    for (proto::Metric const& metric : message.metrics()) {
        Add(commands, metric);
    }
    return commands;
}

} // namespace harvlink::gateway::sparkplug
