#include "fleet/FleetSocket.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace harvlink::fleet {

FleetSocket::~FleetSocket() {
    if (descriptor >= 0) {
        ::close(descriptor);
    }
}

FleetSocket FleetSocket::Open(sockaddr_in const& endpoint) {
    FleetSocket made;
    made.descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_UDP);
    if (made.IsOpen() &&
        ::connect(made.descriptor, reinterpret_cast<sockaddr const*>(&endpoint), sizeof(endpoint)) != 0) {
        return {};
    }
    return made;
}

void FleetSocket::Send(std::span<std::byte const> datagram) const {
    // A refusal that is reported here is the answer to an earlier datagram; this one has not left yet.
    if (::send(descriptor, datagram.data(), datagram.size(), MSG_NOSIGNAL) < 0 && errno == ECONNREFUSED) {
        (void)::send(descriptor, datagram.data(), datagram.size(), MSG_NOSIGNAL);
    }
}

FleetSocket::Arrival FleetSocket::Receive(std::span<std::byte> buffer) const {
    ssize_t const length = ::recv(descriptor, buffer.data(), buffer.size(), MSG_TRUNC);
    if (length < 0) {
        return {.length = 0, .hasArrived = false, .isRefused = errno == ECONNREFUSED};
    }
    return {.length = static_cast<std::size_t>(length), .hasArrived = true, .isRefused = false};
}

} // namespace harvlink::fleet
