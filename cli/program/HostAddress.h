#pragma once

#include <string>

namespace harvlink::cli {

/// The IPv4 address of a host that is given by its address or its name. Throws std::runtime_error if there is no such name.
std::string AddressOf(std::string const& host);

} // namespace harvlink::cli
