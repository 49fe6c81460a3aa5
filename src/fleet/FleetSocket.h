#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

#include <netinet/in.h>

namespace harvlink::fleet {

/// A socket that is connected to one port of one controller, so that the system passes on nothing else. Never waits.
class FleetSocket {
public:
    FleetSocket() = default;
    FleetSocket(FleetSocket&& other) noexcept : descriptor(std::exchange(other.descriptor, -1)) {}
    FleetSocket& operator=(FleetSocket&& other) noexcept {
        std::swap(descriptor, other.descriptor);
        return *this;
    }
    ~FleetSocket();

    /// @return one that is not open if this computer refused
    static FleetSocket Open(sockaddr_in const& endpoint);

    bool IsOpen() const { return descriptor >= 0; }
    int Descriptor() const { return descriptor; }

    /// A datagram that can't be sent counts as lost.
    void Send(std::span<std::byte const> datagram) const;

    /// What was there to be read.
    struct Arrival {
        std::size_t length = 0; ///< of the whole datagram, also if it was cut
        bool hasArrived = false; ///< a datagram; an empty one too
        bool isRefused = false; ///< the host says that nobody listens on the port
    };
    Arrival Receive(std::span<std::byte> buffer) const;

private:
    int descriptor = -1;
};

} // namespace harvlink::fleet
