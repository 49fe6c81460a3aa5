#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "gateway/http/Exchange.h"
#include "gateway/http/LiveFeed.h"

namespace harvlink::gateway {

struct HttpConnection {
    std::shared_ptr<Exchange> exchange; ///< null: no request has come since the last answer
    std::unique_ptr<LiveClient> live; ///< of a WebSocket
    std::string received; ///< the fragments of a message
    std::chrono::steady_clock::time_point since; ///< accepted, answered, or sent an answer
    bool isGivenUp = false; ///< it is being closed
};

/// The open connections, and which of them to give up when others need their place. For the listener's thread.
class Connections {
public:
    static constexpr std::size_t Most = 512;
    static constexpr std::size_t MostLive = 256; ///< pages, so that they never take all places
    static constexpr std::size_t MostDownloads = 8; ///< each has an open file
    static constexpr std::uint64_t MostBytes = 64ULL
                                               << 20; ///< of answers that wait to be sent, unless there is only one

    void Add(lws* socket);
    void Remove(lws* socket);
    HttpConnection* Find(lws* socket);
    lws* SocketOf(std::shared_ptr<Exchange> const& exchange) const; ///< null if it has gone
    std::map<lws*, HttpConnection>& All() { return all_; }

    std::size_t Size() const { return all_.size(); }
    bool IsFull() const { return all_.size() >= Most; }
    bool HasRoomFor(Response const& response) const;
    std::size_t LiveClients() const;

    /// Closes the connection that has gone longest without a whole request, or else the one that has taken its answer for the
    /// longest time, if for more than some seconds. False if there is none.
    bool GiveUpOne();

    /// As GiveUpOne, of those that take an answer.
    bool GiveUpSlowReader();

private:
    template <typename Condition>
    bool GiveUpOldest(Condition const& condition);

    std::map<lws*, HttpConnection> all_;
};

} // namespace harvlink::gateway
