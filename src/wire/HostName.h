#pragma once

#include <chrono>
#include <string>

#include "harvlink/StatusInfo.h"

namespace harvlink {

/// What a lookup of a name found.
struct HostAddress {
    std::string address; ///< IPv4 address in dotted form; empty if there is none
    std::string failure; ///< why there is none
};

/// Asks the system (hosts file, DNS and what else it is set to ask) for the first IPv4 address of a name. It may take long.
HostAddress LookUp(std::string const& name);

/// Whether a text has the form of a host's name: labels of letters, digits, '-' and '_', of which the last is not a
/// number: that is a mistyped address, in which the system would see an abbreviated one.
bool IsHostName(std::string const& text);

/// Replaces a name by its address and leaves an address as it is. Waits at most `limit`: the system's own limits are set
/// elsewhere and are often longer.
///
/// @return "OK", or NameNotResolved with the reason in its text, and `host` as it was.
StatusInfo ResolveHost(std::string& host, std::chrono::milliseconds limit,
                       HostAddress (*lookUp)(std::string const&) = LookUp);

} // namespace harvlink
