#pragma once

#include <optional>
#include <string>
#include <vector>

#include "gateway/config/Config.h"
#include "gateway/http/Request.h"

namespace harvlink::gateway {

/// Who is answered. A page of another site that a browser here shows can't read anything: the Host header must be a name of
/// this gateway, which a name that was made to lead here is not, and a WebSocket or a POST must come from its own page.
class Guard {
public:
    /// Throws ConfigError if the token can't be read or is empty.
    explicit Guard(ListenConfig const& config);

    /// What the request is refused with; none if it is answered.
    std::optional<Response> Refuse(Request const& request, bool isWebSocket) const;

private:
    bool IsOwnHost(std::string const& header) const;

    bool isAnyHost_ = false; ///< the listener has an address of all, so nobody knows how clients call it
    std::vector<std::string> hosts_; ///< without ports
    std::string token_;
};

} // namespace harvlink::gateway
