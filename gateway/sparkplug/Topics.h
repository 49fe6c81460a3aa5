#pragma once

#include <string>
#include <string_view>

namespace harvlink::gateway::sparkplug {

enum class MessageType { NodeBirth, NodeData, NodeDeath, NodeCommand, DeviceBirth, DeviceData, DeviceDeath };

/// The topics of one edge node.
class Topics {
public:
    Topics(std::string group, std::string node) : group_(std::move(group)), node_(std::move(node)) {}

    /// Of the node itself, for the types that begin with Node.
    std::string Of(MessageType type) const;
    /// Of one of its devices, for the others.
    std::string Of(MessageType type, std::string_view device) const;

    static std::string StateOf(std::string_view host);

private:
    std::string group_;
    std::string node_;
};

} // namespace harvlink::gateway::sparkplug
