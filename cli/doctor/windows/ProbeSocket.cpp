#include "cli/doctor/ProbeSocket.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <winsock2.h>

#include "cli/program/HostAddress.h"
#include "cli/program/windows/Sockets.h"

namespace harvlink::cli {

namespace {

using std::chrono::milliseconds;

sockaddr_in NativeEndpoint(std::uint32_t address, std::uint16_t port) {
    sockaddr_in native{};
    native.sin_family = AF_INET;
    native.sin_addr.s_addr = ::htonl(address);
    native.sin_port = ::htons(port);
    return native;
}

/// Their names in <cerrno>. What has none here is EIO.
int CodeOf(int error) {
    switch (error) {
    case WSAECONNRESET: // that nobody listens arrives by this name for UDP
    case WSAECONNREFUSED:
        return ECONNREFUSED;
    case WSAENETRESET: // a router says that the datagram lived too long
    case WSAEHOSTUNREACH:
        return EHOSTUNREACH;
    case WSAENETUNREACH:
        return ENETUNREACH;
    case WSAEADDRNOTAVAIL:
        return EADDRNOTAVAIL;
    case WSAEACCES:
        return EACCES;
    default:
        return EIO;
    }
}

ProbeSocket::Received FailureOf(int error, std::uint16_t port) {
    if (error == WSAEWOULDBLOCK) {
        return {};
    }
    int const code = CodeOf(error);
    bool const isClosed = code == ECONNREFUSED;
    return {.event = isClosed ? ProbeSocket::Event::PortClosed : ProbeSocket::Event::Unreachable,
            .port = port,
            .error = code};
}

} // namespace

// That a port is closed arrives as an error of the socket, as it is not switched off. Not tried on a real Windows.
ProbeSocket::ProbeSocket(std::string const& host) : socket_(INVALID_SOCKET), host_(AddressNumber(host)) {
    NeedSockets();
    socket_ = ::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    u_long isOn = 1;
    if (socket_ == INVALID_SOCKET || ::ioctlsocket(socket_, static_cast<long>(FIONBIO), &isOn) != 0) {
        throw std::system_error(::WSAGetLastError(), std::system_category(), "can't open a socket");
    }
}

ProbeSocket::~ProbeSocket() {
    ::closesocket(socket_);
}

int ProbeSocket::Send(std::uint16_t port, std::span<std::byte const> datagram) const {
    sockaddr_in const target = NativeEndpoint(host_, port);
    lastPort_ = port;
    // The next call may report the error of an earlier datagram, and then sends nothing.
    for (int attempt = 0; attempt < 3; ++attempt) {
        if (::sendto(socket_, reinterpret_cast<char const*>(datagram.data()), static_cast<int>(datagram.size()), 0,
                     reinterpret_cast<sockaddr const*>(&target), sizeof(target)) >= 0) {
            return 0;
        }
        if (int const code = CodeOf(::WSAGetLastError()); code != ECONNREFUSED) {
            return code;
        }
    }
    return 0;
}

ProbeSocket::Received ProbeSocket::Receive(std::span<std::byte> buffer, std::chrono::microseconds time) const {
    WSAPOLLFD waiting{socket_, POLLRDNORM, 0};
    auto const period = std::max(milliseconds(0), std::chrono::ceil<milliseconds>(time));
    if (::WSAPoll(&waiting, 1, static_cast<int>(period.count())) <= 0) {
        return {};
    }
    sockaddr_in source{};
    int size = sizeof(source);
    int const length = ::recvfrom(socket_, reinterpret_cast<char*>(buffer.data()), static_cast<int>(buffer.size()), 0,
                                  reinterpret_cast<sockaddr*>(&source), &size);
    std::uint16_t const port = ::ntohs(source.sin_port);
    int const error = length < 0 ? ::WSAGetLastError() : 0;
    if (length < 0 && error != WSAEMSGSIZE) {
        return FailureOf(error, port == 0 ? lastPort_ : port);
    }
    std::uint32_t const sender = ::ntohl(source.sin_addr.s_addr);
    return {.event = Event::Datagram,
            .length = length < 0 ? buffer.size() : static_cast<std::size_t>(length),
            .sender = sender,
            .isFromHost = sender == host_,
            .port = port};
}

bool ProbeSocket::IsOwn(std::uint32_t address) {
    SOCKET const socket = ::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    sockaddr_in const local = NativeEndpoint(address, 0);
    bool const isOwn = ::bind(socket, reinterpret_cast<sockaddr const*>(&local), sizeof(local)) == 0;
    ::closesocket(socket);
    return isOwn;
}

} // namespace harvlink::cli
