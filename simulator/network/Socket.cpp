#include "simulator/network/Socket.h"

#include <cerrno>
#include <utility>

#include <arpa/inet.h>
#include <sys/socket.h>

namespace harvlink::simulator {

Socket Socket::Bind(std::string const& address, std::uint16_t port) {
    Socket result;
    sockaddr_in local{};
    local.sin_family = AF_INET;
    local.sin_port = htons(port);
    if (inet_pton(AF_INET, address.c_str(), &local.sin_addr) != 1) {
        errno = EINVAL;
        return result;
    }
    Descriptor descriptor(socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_UDP));
    if (descriptor.IsOpen() && bind(descriptor.Get(), reinterpret_cast<sockaddr const*>(&local), sizeof(local)) == 0) {
        result.descriptor_ = std::move(descriptor);
    }
    return result;
}

sockaddr_in Socket::Address() const {
    sockaddr_in address{};
    socklen_t size = sizeof(address);
    getsockname(Get(), reinterpret_cast<sockaddr*>(&address), &size);
    return address;
}

std::ptrdiff_t Socket::Receive(std::span<std::byte> buffer, sockaddr_in& from) const {
    socklen_t length = sizeof(from);
    return recvfrom(Get(), buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr*>(&from), &length);
}

void Socket::Send(std::span<std::byte const> datagram, sockaddr_in const& to) const {
    static_cast<void>(
        sendto(Get(), datagram.data(), datagram.size(), 0, reinterpret_cast<sockaddr const*>(&to), sizeof(to)));
}

} // namespace harvlink::simulator
