#include "wire/UdpTransport.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <ctime>

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace harvlink {
namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;

constexpr long microsecondsPerSecond = 1'000'000;
constexpr long nanosecondsPerMicrosecond = 1'000;

/// An address that can't be read leaves the endpoint zero. Without a port nothing can be sent to it; with one, a
/// controller on this very computer would answer.
sockaddr_in MakeEndpoint(std::string const& ipAddress, std::uint16_t port) {
    sockaddr_in endpoint{};
    endpoint.sin_family = AF_INET;
    if (inet_pton(AF_INET, ipAddress.c_str(), &endpoint.sin_addr) == 1) {
        endpoint.sin_port = htons(port);
    }
    return endpoint;
}

int CreateSocket() {
    return ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP);
}

void Close(int descriptor) {
    if (descriptor >= 0) {
        ::close(descriptor);
    }
}

sockaddr const* AsAddress(sockaddr_in const& endpoint) {
    return reinterpret_cast<sockaddr const*>(&endpoint);
}

#if defined(__linux__) && defined(__LP64__)

/// The system call itself, because it writes the time that is left back to `remaining`, which the C library's wrapper
/// hides. So a wait needs no clock, and one that a signal interrupts goes on for the rest of its period.
int PollOnce(std::span<pollfd> sockets, timespec& remaining) {
    return static_cast<int>(::syscall(SYS_ppoll, sockets.data(), sockets.size(), &remaining, nullptr, 0));
}

#else

int PollOnce(std::span<pollfd> sockets, timespec& remaining) {
    timespec start{};
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &start);
    int const result = ::ppoll(sockets.data(), static_cast<nfds_t>(sockets.size()), &remaining, nullptr);
    int const error = errno;
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    constexpr long long nanosecondsPerSecond = 1'000'000'000;
    long long const left = std::max(0LL, (remaining.tv_sec - (now.tv_sec - start.tv_sec)) * nanosecondsPerSecond +
                                             remaining.tv_nsec - (now.tv_nsec - start.tv_nsec));
    remaining = {static_cast<std::time_t>(left / nanosecondsPerSecond), static_cast<long>(left % nanosecondsPerSecond)};
    errno = error;
    return result;
}

#endif

/// Until one is readable or the period is over.
/// @return how much of the period has passed.
nanoseconds WaitReadable(std::span<pollfd> sockets, timeval period) {
    timespec const whole{period.tv_sec + period.tv_usec / microsecondsPerSecond,
                         static_cast<long>(period.tv_usec % microsecondsPerSecond) * nanosecondsPerMicrosecond};
    timespec remaining = whole;
    while (PollOnce(sockets, remaining) < 0 && errno == EINTR) {
    }
    return seconds(whole.tv_sec - remaining.tv_sec) + nanoseconds(whole.tv_nsec - remaining.tv_nsec);
}

} // namespace

UdpTransport::~UdpTransport() {
    for (Port const& port : {robot, file}) {
        Close(port.socket);
    }
}

bool UdpTransport::IsHostAddress(std::string const& text) {
    constexpr unsigned firstGroup = 224; // from there on the first number names groups, and in the end all hosts
    in_addr address{};
    bool const isWhole = text.find('\0') == std::string::npos;
    if (!isWhole || inet_pton(AF_INET, text.c_str(), &address) != 1) {
        return false;
    }
    auto const first = ntohl(address.s_addr) >> 24U;
    return first > 0 && first < firstGroup;
}

StatusInfo UdpTransport::Open(std::string const& ipAddress, Peers whom) {
    peers = whom;
    robot.endpoint = MakeEndpoint(ipAddress, RobotPort);
    file.endpoint = MakeEndpoint(ipAddress, FilePort);
    bool const isRobotOpen = OpenSocket(robot);
    if (!OpenSocket(file) || !isRobotOpen) {
        bool const isMade = robot.socket >= 0 && file.socket >= 0;
        return StatusInformation(ErrorStatusCodes::SocketOpenError,
                                 isMade ? "There is no route to the controller." : "Failed to create socket.");
    }
    return StatusInformation(ErrorStatusCodes::Ok);
}

bool UdpTransport::OpenSocket(Port& port) const {
    port.socket = CreateSocket();
    return port.socket >= 0 &&
           (!IsConnected() || ::connect(port.socket, AsAddress(port.endpoint), sizeof(port.endpoint)) == 0);
}

bool UdpTransport::Renew(Division division) {
    Port& port = PortOf(division);
    Port fresh{-1, port.endpoint};
    // Bound before the old one is closed, or the system might hand out the same source port once more.
    sockaddr_in anyPort{};
    anyPort.sin_family = AF_INET;
    if (!OpenSocket(fresh) || (!IsConnected() && ::bind(fresh.socket, AsAddress(anyPort), sizeof(anyPort)) != 0)) {
        Close(fresh.socket);
        return false;
    }
    Close(port.socket);
    port = fresh;
    return true;
}

void UdpTransport::Send(Division division, std::span<std::byte const> datagram) {
    constexpr int flags = MSG_DONTWAIT | MSG_NOSIGNAL;
    Port const& port = PortOf(division);
    // A datagram that can't be sent counts as lost: it shows as a time-out.
    if (!IsConnected()) {
        (void)::sendto(port.socket, datagram.data(), datagram.size(), flags, AsAddress(port.endpoint),
                       sizeof(port.endpoint));
    } else if (::send(port.socket, datagram.data(), datagram.size(), flags) < 0 && errno == ECONNREFUSED) {
        // That was the answer to an earlier datagram; this one has not left yet.
        (void)::send(port.socket, datagram.data(), datagram.size(), flags);
    }
}

Arrival UdpTransport::Receive(Division asked, std::span<std::byte> buffer, timeval period) {
    Port const& wanted = PortOf(asked);
    Port const& arrived = IsConnected() ? wanted : robot;
    std::array<pollfd, 2> sockets{{{arrived.socket, POLLIN, 0}, {file.socket, POLLIN, 0}}};
    nanoseconds const waited = WaitReadable(std::span(sockets).first(IsConnected() ? 1 : 2), period);
    Arrival arrival;
    if (sockets[0].revents != 0) {
        arrival = Read(arrived, wanted, buffer);
    } else if (sockets[1].revents != 0) {
        arrival = Read(file, wanted, buffer);
    }
    arrival.waited = waited;
    return arrival;
}

Arrival UdpTransport::Read(Port const& port, Port const& asked, std::span<std::byte> buffer) const {
    bool const isNamed = peers == Peers::AnyoneNamed;
    sockaddr_in sender{};
    socklen_t size = sizeof(sender);
    // A datagram that was announced may be gone when it is read, so the read must not wait.
    ssize_t const length =
        ::recvfrom(port.socket, buffer.data(), buffer.size(), MSG_DONTWAIT | MSG_TRUNC,
                   isNamed ? reinterpret_cast<sockaddr*>(&sender) : nullptr, isNamed ? &size : nullptr);
    Arrival arrival;
    if (length < 0) {
        arrival.isRefused = IsConnected() && errno == ECONNREFUSED;
        return arrival;
    }
    arrival.length = static_cast<std::size_t>(length);
    arrival.isEmpty = length == 0;
    arrival.isForeign = isNamed && (sender.sin_addr.s_addr != asked.endpoint.sin_addr.s_addr ||
                                    sender.sin_port != asked.endpoint.sin_port);
    return arrival;
}

} // namespace harvlink
