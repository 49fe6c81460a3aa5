#pragma once

#include <memory>
#include <string>

#include <libwebsockets.h>

#include "gateway/http/LiveFeed.h"
#include "gateway/http/Request.h"

namespace harvlink::gateway {

/// What a connection is doing. The listener's thread has it; the worker puts an answer into its exchange.
struct Exchange {
    Request request;
    Response response;
    bool isAnswered = false; ///< set on the listener's thread, by the worker's message
    bool hasHeaders = false;
    std::size_t sent = 0; ///< bytes of the body
};

struct Connection {
    std::shared_ptr<Exchange> exchange;
    std::unique_ptr<LiveClient> live; ///< of a WebSocket
    std::string received; ///< the fragments of a message
};

/// The request whose headers have come.
Request RequestOf(lws* socket, std::string_view path);

/// Sends the headers, then the body in pieces, each time that there is room. -1: the connection ends.
int SendResponse(lws* socket, Exchange& exchange);

} // namespace harvlink::gateway
