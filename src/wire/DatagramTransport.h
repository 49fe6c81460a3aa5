#pragma once

#include <chrono>
#include <cstddef>
#include <span>

#include "wire/Packets.h"

namespace harvlink {

/// What a wait ended with.
struct Arrival {
    /// Of the whole datagram, also if it was cut; 0 if none came.
    std::size_t length = 0;
    bool isEmpty = false; ///< a datagram without a single byte came
    bool isForeign = false; ///< it came from another address or port than those of the controller that were asked
    bool isRefused = false; ///< instead of a datagram: the host says that nobody listens on the port
    std::chrono::nanoseconds waited{}; ///< part of the period that had passed when it was there

    Arrival() = default;
    // NOLINTNEXTLINE(google-explicit-constructor): a length alone says it all but for sockets
    Arrival(std::size_t datagramLength) : length(datagramLength) {}
};

/// The two ports of a controller as the exchange sees them. One implementation uses sockets; tests replace it
/// by others that make up the replies.
class DatagramTransport {
public:
    DatagramTransport() = default;
    DatagramTransport(DatagramTransport const&) = delete;
    DatagramTransport& operator=(DatagramTransport const&) = delete;
    virtual ~DatagramTransport() = default;

    /// Sends one datagram to the port that serves the division. Whether it arrives is unknown, as with any datagram.
    virtual void Send(Division division, std::span<std::byte const> datagram) = 0;

    /// Waits for at most `period` until a datagram is there, and reads one into `buffer`. A longer one is cut. `asked` is
    /// the division of the request that is waited for; whether the other port is listened to too, the transport decides.
    virtual Arrival Receive(Division asked, std::span<std::byte> buffer, std::chrono::microseconds period) = 0;

    /// Goes on from another source port, so that what is still on its way to the old one never arrives.
    /// @return false if this computer refused; everything is as before then.
    virtual bool Renew(Division /*division*/) { return true; }
};

} // namespace harvlink
