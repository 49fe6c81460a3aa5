#pragma once

#include <string>
#include <string_view>

namespace harvlink::gateway::sparkplug {

/// Why a topic can't contain this id of a group, a node, a device or a host, such as "it contains '/'"; empty if it can. An id is
/// UTF-8 without '+', '/', '#', control characters and non-characters, and not empty.
std::string ProblemOfId(std::string_view id);

/// A device id for a controller of any name: what a topic can't contain becomes "%" and two hexadecimal digits a byte.
std::string DeviceIdOf(std::string_view controllerName);

/// `text` with each byte that is not UTF-8 replaced by U+FFFD: a payload with anything else can't be decoded.
std::string RepairedUtf8(std::string_view text);

} // namespace harvlink::gateway::sparkplug
