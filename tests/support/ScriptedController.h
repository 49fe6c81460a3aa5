#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "support/WireBytes.h"
#include "system/Endpoint.h"
#include "system/NativeSocket.h"
#include "system/WakeUp.h"
#include "wire/NetworkManager.h"

namespace harvlink::test {

/// One datagram that the controller sends. As constructed it reports success, without a payload.
struct Reply {
    Bytes payload{};
    std::uint8_t status = 0;
    std::uint8_t addedStatusSize = 0;
    std::uint16_t addedStatus = 0;
    std::uint32_t block = 0;
    std::uint8_t staleBy = 0; ///< how far its id is behind the id of the request
    bool toOtherSocket = false; ///< to the socket with which the client last used the other port
    std::chrono::milliseconds delay{};
    std::optional<Bytes> raw{}; ///< the whole datagram, sent unchanged
};

inline Reply Payload(Bytes payload) {
    return {.payload = std::move(payload)};
}
inline Reply Refusal(std::uint16_t addedStatus) {
    return {.status = 0x1f, .addedStatusSize = 2, .addedStatus = addedStatus};
}
using Replies = std::vector<Reply>;

struct Datagram {
    Bytes bytes;
    std::uint16_t port = 0;
    std::uint16_t clientPort = 0;
    std::chrono::steady_clock::time_point time;

    std::uint8_t Id() const { return bytes.size() > idOffset ? bytes[idOffset] : std::uint8_t{0}; }
    std::uint8_t Service() const { return bytes.size() > 29 ? bytes[29] : std::uint8_t{0}; }
};

/// Plays a controller on ports 10040 and 10041 of its own loopback address, with the answers that the test sets. An
/// unexpected datagram fails the test, and so does an expectation that is left at the end.
class ScriptedController {
public:
    ScriptedController();
    ScriptedController(ScriptedController const&) = delete;
    ScriptedController& operator=(ScriptedController const&) = delete;
    /// Waits until all expected requests have come, for a limited time.
    ~ScriptedController();

    std::string const& Address() const { return address; }

    /// The next request must be `request`, apart from the id, and gets `replies`.
    void Expect(Bytes request, Replies replies);
    void Expect(Bytes request, Reply reply = {}) { Expect(std::move(request), Replies{std::move(reply)}); }
    /// Answers the probe that opens a connection.
    void ExpectProbe(std::string_view softwareVersion);

    /// Answers all requests while none is expected. Runs on the thread of the controller.
    void AnswerRest(std::function<Replies(Datagram const&)> handler);

    /// All datagrams so far, after waiting for at least `count`.
    std::vector<Datagram> Received(std::size_t count = 0);

    /// Whether another request is waiting. For use in handlers.
    bool HasPending() const;

    /// A manager that is connected to this controller. Its time-out is long enough for every answer.
    std::unique_ptr<NetworkManager> Connect(std::string_view softwareVersion = "YA1.00", unsigned retries = 0,
                                            ConnectionPolicy const& policy = {});

    /// The datagram that the reply is.
    static Bytes ReplyBytes(Reply const& reply, Datagram const& request);

private:
    struct Port {
        NativeSocket descriptor = NoSocket;
        std::uint16_t number = 0;
        Endpoint lastClient;
    };
    struct Step {
        Bytes request;
        Replies replies;
    };

    void Bind(std::string const& candidate);
    void Serve();
    void ReadFrom(Port& port, Port& other);
    Replies RepliesTo(Datagram const& datagram);

    std::string address;
    Port robot;
    Port file;
    WakeUp stopEvent;
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Step> steps;
    std::function<Replies(Datagram const&)> rest;
    std::vector<Datagram> received;
    std::thread thread;
};

/// Shortens the time-out of a manager from Connect to 128 ms, for a controller that stays silent.
void Hurry(NetworkManager& manager);

} // namespace harvlink::test
