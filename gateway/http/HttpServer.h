#pragma once

#include <cstdint>
#include <memory>

#include "gateway/config/Config.h"
#include "gateway/http/Api.h"

namespace harvlink::gateway {

/// The one listener: metrics, health, API, page and WebSocket, on a thread of its own. Connections, headers, bodies and the time
/// that a slow client takes are limited.
class HttpServer {
public:
    static constexpr std::size_t LargestHeader = 4096;
    static constexpr std::size_t LargestBody = 65'536;

    /// Listens. Throws ConfigError if it can't. Port 0 takes one that is free.
    HttpServer(ListenConfig const& config, ApiSources sources);
    HttpServer(HttpServer const&) = delete;
    HttpServer& operator=(HttpServer const&) = delete;
    /// Closes all connections.
    ~HttpServer();

    std::uint16_t Port() const;

    /// Rises as long as its thread goes round, ten times a second.
    std::uint64_t Rounds() const;

    /// Connections, requests and what was refused, of all listeners that there were. Called on any thread.
    static std::vector<Figure> Figures();

private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace harvlink::gateway
