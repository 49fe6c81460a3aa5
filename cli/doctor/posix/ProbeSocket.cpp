#include "cli/doctor/ProbeSocket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "cli/program/HostAddress.h"

#ifdef IP_RECVERR
#include <linux/errqueue.h>
#endif

namespace harvlink::cli {

namespace {

ProbeSocket::Event EventOf(int error) {
    return error == ECONNREFUSED ? ProbeSocket::Event::PortClosed : ProbeSocket::Event::Unreachable;
}

sockaddr_in NativeEndpoint(std::uint32_t address, std::uint16_t port) {
    sockaddr_in native{};
    native.sin_family = AF_INET;
    native.sin_addr.s_addr = htonl(address);
    native.sin_port = htons(port);
    return native;
}

} // namespace

ProbeSocket::ProbeSocket(std::string const& host)
    : descriptor_(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)), host_(AddressNumber(host)) {
    if (descriptor_ < 0) {
        throw std::system_error(errno, std::generic_category(), "can't open a socket");
    }
#ifdef IP_RECVERR
    // Only an unconnected socket sees answers from a wrong port, and such a socket gets ICMP errors only with this option.
    int const on = 1;
    ::setsockopt(descriptor_, IPPROTO_IP, IP_RECVERR, &on, sizeof(on));
#endif
}

ProbeSocket::~ProbeSocket() {
    ::close(descriptor_);
}

int ProbeSocket::Send(std::uint16_t port, std::span<std::byte const> datagram) const {
    sockaddr_in const target = NativeEndpoint(host_, port);
    // The next call reports the error of an earlier datagram, and then sends nothing.
    for (int attempt = 0; attempt < 3; ++attempt) {
        if (::sendto(descriptor_, datagram.data(), datagram.size(), MSG_NOSIGNAL,
                     reinterpret_cast<sockaddr const*>(&target), sizeof(target)) >= 0) {
            return 0;
        }
        if (errno != ECONNREFUSED) {
            return errno;
        }
    }
    return 0;
}

ProbeSocket::Received ProbeSocket::Receive(std::span<std::byte> buffer, std::chrono::microseconds time) const {
    pollfd waiting{descriptor_, POLLIN, 0};
    long const microseconds = std::max<long>(0, time.count());
    timespec const period{microseconds / 1'000'000, microseconds % 1'000'000 * 1'000};
    if (::ppoll(&waiting, 1, &period, nullptr) <= 0) {
        return {};
    }
    if ((waiting.revents & POLLERR) != 0) {
        return ReadError();
    }
    sockaddr_in source{};
    socklen_t size = sizeof(source);
    ssize_t const length = ::recvfrom(descriptor_, buffer.data(), buffer.size(), MSG_DONTWAIT,
                                      reinterpret_cast<sockaddr*>(&source), &size);
    if (length < 0) {
        return {};
    }
    return {.event = Event::Datagram,
            .length = static_cast<std::size_t>(length),
            .sender = ntohl(source.sin_addr.s_addr),
            .isFromHost = ntohl(source.sin_addr.s_addr) == host_,
            .port = ntohs(source.sin_port)};
}

bool ProbeSocket::IsOwn(std::uint32_t address) {
    int const descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in const local = NativeEndpoint(address, 0);
    bool const isOwn = ::bind(descriptor, reinterpret_cast<sockaddr const*>(&local), sizeof(local)) == 0;
    ::close(descriptor);
    return isOwn;
}

ProbeSocket::Received ProbeSocket::ReadError() const {
    Received received;
    socklen_t size = sizeof(received.error);
    ::getsockopt(descriptor_, SOL_SOCKET, SO_ERROR, &received.error, &size);
#ifdef IP_RECVERR
    // The address that comes with a queued error is the one to which the datagram was sent.
    sockaddr_in target{};
    alignas(cmsghdr) std::array<std::byte, 256> control{};
    msghdr message{};
    message.msg_name = &target;
    message.msg_namelen = sizeof(target);
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    if (::recvmsg(descriptor_, &message, MSG_ERRQUEUE | MSG_DONTWAIT) >= 0) {
        received.port = ntohs(target.sin_port);
        for (cmsghdr* header = CMSG_FIRSTHDR(&message); header != nullptr; header = CMSG_NXTHDR(&message, header)) {
            if (header->cmsg_level == IPPROTO_IP && header->cmsg_type == IP_RECVERR) {
                sock_extended_err error{};
                std::memcpy(&error, CMSG_DATA(header), sizeof(error));
                received.error = static_cast<int>(error.ee_errno);
                sockaddr_in sender{};
                // The sender's address follows the error in the same message.
                std::memcpy(&sender, SO_EE_OFFENDER(reinterpret_cast<sock_extended_err*>(CMSG_DATA(header))),
                            sizeof(sender));
                received.sender = ntohl(sender.sin_addr.s_addr);
                received.isFromHost = received.sender == host_;
            }
        }
    }
#endif
    received.event = received.error == 0 ? Event::Nothing : EventOf(received.error);
    return received;
}

} // namespace harvlink::cli
