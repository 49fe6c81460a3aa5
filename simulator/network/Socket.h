#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include <netinet/in.h>

#include "simulator/base/Descriptor.h"

namespace harvlink::simulator {

/// A non-blocking UDP socket bound to one address and port.
class Socket {
public:
    /// On failure the socket is not open and errno gives the reason.
    static Socket Bind(std::string const& address, std::uint16_t port);

    bool IsOpen() const { return descriptor_.IsOpen(); }
    int Get() const { return descriptor_.Get(); }

    /// The address and port to which it is bound.
    sockaddr_in Address() const;

    /// Receives one datagram without waiting, cut at the size of the buffer. Returns its length, or -1 if there is
    /// none.
    std::ptrdiff_t Receive(std::span<std::byte> buffer, sockaddr_in& from) const;

    /// A datagram that can't be sent is dropped, as the network may drop any datagram.
    void Send(std::span<std::byte const> datagram, sockaddr_in const& to) const;

private:
    Descriptor descriptor_;
};

} // namespace harvlink::simulator
