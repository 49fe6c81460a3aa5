#pragma once

#include <cstddef>
#include <span>

#include <sys/time.h>

#include "wire/Packets.h"

namespace harvlink {

/// The two ports of a controller as the exchange sees them. One implementation talks to sockets; another stands in for
/// them where replies are made up.
class DatagramTransport {
public:
    DatagramTransport() = default;
    DatagramTransport(DatagramTransport const&) = delete;
    DatagramTransport& operator=(DatagramTransport const&) = delete;
    virtual ~DatagramTransport() = default;

    /// Sends one datagram to the port that serves the division. Its fate is unknown, as with any datagram.
    virtual void Send(Division division, std::span<std::byte const> datagram) = 0;

    /// Waits for at most `period` until a datagram is there on either port, and reads one. A longer one is cut.
    /// @return the number of bytes written to `buffer`; 0 if none came.
    virtual std::size_t Receive(std::span<std::byte> buffer, timeval period) = 0;
};

} // namespace harvlink
