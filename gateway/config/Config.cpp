#include "gateway/config/Config.h"

namespace harvlink::gateway {

std::vector<FleetGroup> Config::GroupsOf(ControllerConfig const& controller) const {
    std::vector<FleetGroup> groups;
    for (std::string const& name : controller.polls) {
        for (PollConfig const& poll : polls) {
            if (poll.name == name) {
                groups.push_back(poll.group);
            }
        }
    }
    return groups;
}

} // namespace harvlink::gateway
