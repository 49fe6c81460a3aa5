#pragma once

#include <cstdint>
#include <string>

namespace harvlink::cli {

/// The IPv4 address of a host that is given by its address or its name. Throws std::runtime_error if there is no such name.
std::string AddressOf(std::string const& host);

/// Of "127.0.0.1": 0x7F000001. 0 for what is not an IPv4 address.
std::uint32_t AddressNumber(std::string const& address);

/// "127.0.0.1"
std::string AddressText(std::uint32_t address);

/// The command by which people see how this computer reaches a host.
std::string RouteCommand(std::string const& host);

/// The command that asks a host three times whether it is there.
std::string PingCommand(std::string const& host);

} // namespace harvlink::cli
