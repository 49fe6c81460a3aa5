#include "fleet/FleetCheck.h"

#include <cmath>
#include <sstream>

#include "fleet/ItemCheck.h"
#include "wire/HostName.h"
#include "wire/UdpTransport.h"

namespace harvlink::fleet {
namespace {

constexpr std::size_t longestName = 63;
constexpr std::size_t mostGroups = 16;
constexpr std::uint64_t mostItems = 65536; ///< of a controller
constexpr unsigned longestTimeout = 3'600'000; ///< milliseconds
constexpr unsigned mostRetries = 1000;
constexpr unsigned mostLanes = 4;
constexpr std::chrono::nanoseconds shortestPeriod = std::chrono::milliseconds(1);
constexpr std::chrono::nanoseconds longestPeriod = std::chrono::hours(24);
constexpr std::chrono::microseconds longestGap = std::chrono::minutes(1);

std::string WrongOption(FleetControllerOptions const& options) {
    if (!UdpTransport::IsHostAddress(options.address) && !IsHostName(options.address)) {
        return "the address is not the IPv4 address of a host, such as 192.168.1.31, nor a host's name";
    }
    if (options.timeout == 0 || options.timeout > longestTimeout) {
        return "the timeout is not 1 to 3600000 milliseconds";
    }
    if (options.retries > mostRetries) {
        return "there are more than 1000 retries";
    }
    if (options.lanes == 0 || options.lanes > mostLanes) {
        return "there are not 1 to 4 lanes";
    }
    if (options.gap.count() < 0 || options.gap > longestGap) {
        return "the gap is not 0 to 60 seconds";
    }
    double const rate = options.mostRequestsPerSecond;
    if (!std::isfinite(rate) || rate < 0.0 || (rate > 0.0 && rate < 0.01)) {
        return "the limit is not 0 or at least 0.01 requests a second";
    }
    return {};
}

std::string WrongGroup(FleetGroup const& group) {
    if (group.period < shortestPeriod || group.period > longestPeriod) {
        return "its period is not 1 millisecond to 24 hours";
    }
    if (group.items.empty()) {
        return "it has no items";
    }
    if (group.longestSilence.count() < 0 || group.longestSilence > longestPeriod) {
        return "its longest silence is not 0 to 24 hours";
    }
    return {};
}

std::string WrongItem(FleetItem const& item, FleetGroup const& group, ControllerVersion generation) {
    std::string what = WhyNot(item, generation);
    if (what.empty() && item.deadBand > 0.0 && !group.onChange) {
        what = "a dead band takes a group with onChange";
    }
    if (what.empty()) {
        return {};
    }
    std::ostringstream text;
    text << "item \"" << item << "\": " << what;
    return text.str();
}

std::string WrongGroups(std::vector<FleetGroup> const& groups, ControllerVersion generation) {
    if (groups.empty() || groups.size() > mostGroups) {
        return "there are not 1 to 16 groups";
    }
    std::uint64_t items = 0;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        std::string what = WrongGroup(groups[i]);
        for (auto item = groups[i].items.begin(); item != groups[i].items.end() && what.empty(); ++item) {
            what = WrongItem(*item, groups[i], generation);
            items += item->count;
        }
        if (!what.empty()) {
            return "group " + std::to_string(i) + ": " + what;
        }
    }
    return items > mostItems ? "there are more than 65536 items" : "";
}

} // namespace

StatusInfo InvalidController(std::string const& name, std::string const& what) {
    return StatusInformation(ErrorStatusCodes::InvalidFleet,
                             "Controller \"" + name + "\" can't be watched: " + what + ".");
}

StatusInfo CheckController(std::string const& name, FleetControllerOptions const& options,
                           std::vector<FleetGroup> const& groups) {
    std::string what;
    if (name.empty() || name.size() > longestName || name.find('\0') != std::string::npos) {
        what = "its name does not have 1 to 63 bytes";
    }
    if (what.empty()) {
        what = WrongOption(options);
    }
    if (what.empty()) {
        what = WrongGroups(groups, options.generation);
    }
    return what.empty() ? StatusInformation(ErrorStatusCodes::Ok) : InvalidController(name, what);
}

} // namespace harvlink::fleet
