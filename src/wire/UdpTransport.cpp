#include "wire/UdpTransport.h"

#include <algorithm>
#include <cerrno>
#include <ctime>

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace harvlink {
namespace {

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

#if defined(__linux__) && defined(__LP64__)

/// The system call itself, because it writes the time that is left back to `remaining`, which the C library's wrapper
/// hides. So a wait costs no look at the clock, and one that a signal interrupts goes on for the rest of its period.
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

void WaitReadable(std::span<pollfd> sockets, timeval period) {
    timespec remaining{period.tv_sec + period.tv_usec / microsecondsPerSecond,
                       period.tv_usec % microsecondsPerSecond * nanosecondsPerMicrosecond};
    while (PollOnce(sockets, remaining) < 0 && errno == EINTR) {
    }
}

} // namespace

UdpTransport::~UdpTransport() {
    for (int const descriptor : {robotSocket, fileSocket}) {
        if (descriptor >= 0) {
            ::close(descriptor);
        }
    }
}

StatusInfo UdpTransport::Open(std::string const& ipAddress) {
    robotSocket = CreateSocket();
    fileSocket = CreateSocket();
    if (robotSocket < 0 || fileSocket < 0) {
        return StatusInformation(ErrorStatusCodes::SocketOpenError, "Failed to create socket.");
    }
    robotEndpoint = MakeEndpoint(ipAddress, RobotPort);
    fileEndpoint = MakeEndpoint(ipAddress, FilePort);
    return StatusInformation(ErrorStatusCodes::Ok);
}

void UdpTransport::Send(Division division, std::span<std::byte const> datagram) {
    bool const toFilePort = division == Division::FileControl;
    sockaddr_in const& endpoint = toFilePort ? fileEndpoint : robotEndpoint;
    // A datagram that can't be sent is one that is lost: it shows as a time-out.
    (void)::sendto(toFilePort ? fileSocket : robotSocket, datagram.data(), datagram.size(), MSG_DONTWAIT | MSG_NOSIGNAL,
                   reinterpret_cast<sockaddr const*>(&endpoint), sizeof(endpoint));
}

std::size_t UdpTransport::Receive(std::span<std::byte> buffer, timeval period) {
    std::array<pollfd, 2> sockets{{{robotSocket, POLLIN, 0}, {fileSocket, POLLIN, 0}}};
    WaitReadable(sockets, period);
    auto const readable = std::ranges::find_if(sockets, [](pollfd const& socket) { return socket.revents != 0; });
    if (readable == sockets.end()) {
        return 0;
    }
    // A datagram that was announced may be gone when it is read, so the read must not wait.
    ssize_t const length = ::recvfrom(readable->fd, buffer.data(), buffer.size(), MSG_DONTWAIT, nullptr, nullptr);
    return length > 0 ? static_cast<std::size_t>(length) : 0;
}

} // namespace harvlink
