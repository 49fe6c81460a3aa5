#pragma once

#include <string>

#include "gateway/config/Config.h"

namespace harvlink::gateway {

/// What a configuration costs, for people: exchanges a second, of each controller, and from which round trip on its periods
/// can't be kept. Sends nothing, not even to a name server.
std::string BillOf(Config const& config);

} // namespace harvlink::gateway
