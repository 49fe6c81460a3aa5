#include "gateway/sparkplug/Topics.h"

#include <array>

#include <fmt/format.h>

namespace harvlink::gateway::sparkplug {

namespace {

constexpr std::array<std::string_view, 7> TypeNames{"NBIRTH", "NDATA", "NDEATH", "NCMD", "DBIRTH", "DDATA", "DDEATH"};

} // namespace

std::string Topics::Of(MessageType type) const {
    return fmt::format("spBv1.0/{}/{}/{}", group_, TypeNames.at(static_cast<std::size_t>(type)), node_);
}

std::string Topics::Of(MessageType type, std::string_view device) const {
    return fmt::format("{}/{}", Of(type), device);
}

std::string Topics::StateOf(std::string_view host) {
    return fmt::format("spBv1.0/STATE/{}", host);
}

} // namespace harvlink::gateway::sparkplug
