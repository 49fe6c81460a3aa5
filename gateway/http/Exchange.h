#pragma once

#include <cstdint>
#include <vector>

#include <libwebsockets.h>

#include "gateway/http/Request.h"

namespace harvlink::gateway {

/// A request and its answer. The listener's thread has it; a worker puts an answer into it.
struct Exchange {
    Request request;
    Response response;
    bool isComplete = false; ///< the whole request is there
    bool isAnswered = false; ///< set on the listener's thread, by the worker's message
    bool hasHeaders = false;
    std::uint64_t sent = 0; ///< bytes of the body

    bool IsSent() const { return hasHeaders && sent == response.Size(); }
};

/// The request whose headers have come.
Request RequestOf(lws* socket, std::string_view path);

/// Sends the headers, then the body in pieces, each time that there is room. `piece` is memory to do it with. -1: the connection
/// ends.
int SendResponse(lws* socket, Exchange& exchange, std::vector<unsigned char>& piece);

} // namespace harvlink::gateway
