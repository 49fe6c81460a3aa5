#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

#include <libwebsockets.h>

#include "gateway/http/Request.h"

namespace harvlink::gateway {

/// A request and its answer. For the listener's thread; a worker only reads the request.
struct Exchange {
    Request request;
    std::chrono::steady_clock::time_point const begin = std::chrono::steady_clock::now();
    std::shared_ptr<Response> response; ///< null until it is answered; several exchanges may have the same
    bool isComplete = false; ///< the whole request is there
    bool hasHeaders = false;
    std::uint64_t sent = 0; ///< bytes of the body

    bool IsSent() const { return hasHeaders && sent == response->Size(); }
};

/// The request whose headers have come.
Request RequestOf(lws* socket, std::string_view path);

/// Sends an answer that is short enough for one piece, before the library takes the request for its own.
int SendAtOnce(lws* socket, Exchange& exchange, std::vector<unsigned char>& piece);

/// Sends the headers, then the body in pieces, each time that there is room. `piece` is memory to do it with. -1: the connection
/// ends.
int SendResponse(lws* socket, Exchange& exchange, std::vector<unsigned char>& piece);

} // namespace harvlink::gateway
