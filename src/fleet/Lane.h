#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>

#include "files/SetPacket.h"
#include "fleet/Query.h"
#include "fleet/Services.h"
#include "system/DatagramSocket.h"
#include "wire/Packets.h"

namespace harvlink::fleet {

/// How long an answer is waited for.
struct WaitLimits {
    std::int64_t timeout = 0; ///< nanoseconds
    unsigned retries = 0;
};

/// A socket and the one request that is in flight on it, under the strict rules.
class Lane {
public:
    Lane(Services& shared, ControllerRecord& controller, Poller::Token ownToken)
        : services(shared), record(controller), token(ownToken) {}
    Lane(Lane const&) = delete;
    Lane& operator=(Lane const&) = delete;
    ~Lane() { Close(); }

    /// Goes on from a new source port. @return false if this computer refused
    bool Open(Division division);
    void Close();
    bool IsOpen() const { return socket.IsOpen(); }

    bool IsWaiting() const { return isWaiting; }

    /// When Expire has to be called.
    std::int64_t Deadline() const { return deadline; }

    /// Sends a request. What is still on its way to an unanswered one never arrives, as it goes to another port.
    /// @return false if that takes a socket which this computer refused
    bool Ask(Query const& query, WaitLimits const& limits, std::int64_t now);

    /// A step of a transfer. Those after the first keep the number of the transfer, and only the first is sent again.
    void AskFile(FileRequest const& step, std::optional<std::uint8_t> transferId, bool waitForReply,
                 WaitLimits const& limits, std::int64_t now);

    enum class Outcome : std::uint8_t { Nothing, Answered, NotListening };

    /// Reads one datagram. After Answered, it is in the services, `Code` says what it reports and `RoundTrip` how long it took.
    Outcome Receive(std::int64_t now);

    enum class Expiry : std::uint8_t { Missed, Failed };

    /// At the end of a period: a read is sent again, or, after the last one, has failed.
    Expiry Expire(std::int64_t now);

    /// Gives up what is in flight.
    void Abandon();

    /// Moves the deadline: this computer was not there meanwhile.
    void Shift(std::int64_t nanoseconds) { deadline += nanoseconds; }

    std::int32_t Code() const { return code; }
    std::int64_t RoundTrip() const { return roundTrip; }

private:
    using RequestPacket = OutgoingPacket<std::array<std::byte, FileNameSize>>;

    void Begin(WaitLimits const& limits, std::int64_t now);
    void SetWaiting(bool value);
    void Send();
    bool IsAnswer(std::size_t length);

    Services& services;
    ControllerRecord& record;
    Poller::Token token;
    DatagramSocket socket; ///< connected to one port of the controller
    Division port = Division::RobotControl;
    bool isWaiting = false;
    bool isNewPortDue = false;
    std::uint8_t lastId = 0;
    std::uint16_t minimumReply = 0;
    unsigned periodsLeft = 0;
    std::int64_t period = 0;
    std::int64_t askedAt = 0;
    std::int64_t deadline = 0;
    std::int64_t roundTrip = 0;
    std::int32_t code = 0;
    RequestPacket request;
};

} // namespace harvlink::fleet
