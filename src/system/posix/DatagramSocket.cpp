#include "system/DatagramSocket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace harvlink {
namespace {

using std::chrono::microseconds;
using std::chrono::nanoseconds;
using std::chrono::seconds;

constexpr int flags = MSG_DONTWAIT | MSG_NOSIGNAL;

sockaddr_in NativeEndpoint(Endpoint const& endpoint) {
    sockaddr_in native{};
    native.sin_family = AF_INET;
    native.sin_addr.s_addr = htonl(endpoint.address);
    native.sin_port = htons(endpoint.port);
    return native;
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

nanoseconds WaitFor(std::span<pollfd> sockets, microseconds period) {
    auto const whole = std::chrono::floor<seconds>(period);
    timespec const limit{static_cast<std::time_t>(whole.count()),
                         static_cast<long>(nanoseconds(period - whole).count())};
    timespec remaining = limit;
    while (PollOnce(sockets, remaining) < 0 && errno == EINTR) {
    }
    return seconds(limit.tv_sec - remaining.tv_sec) + nanoseconds(limit.tv_nsec - remaining.tv_nsec);
}

} // namespace

DatagramSocket::~DatagramSocket() {
    if (IsOpen()) {
        ::close(native);
    }
}

DatagramSocket DatagramSocket::Open() {
    return DatagramSocket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP));
}

bool DatagramSocket::Connect(Endpoint const& endpoint) {
    sockaddr_in const address = NativeEndpoint(endpoint);
    isConnected = ::connect(native, AsAddress(address), sizeof(address)) == 0;
    return isConnected;
}

bool DatagramSocket::TakePort() {
    sockaddr_in const anyPort = NativeEndpoint({});
    return ::bind(native, AsAddress(anyPort), sizeof(anyPort)) == 0;
}

void DatagramSocket::Send(std::span<std::byte const> datagram) const {
    if (::send(native, datagram.data(), datagram.size(), flags) < 0 && errno == ECONNREFUSED) {
        // That was the answer to an earlier datagram; this one has not left yet.
        (void)::send(native, datagram.data(), datagram.size(), flags);
    }
}

void DatagramSocket::SendTo(Endpoint const& endpoint, std::span<std::byte const> datagram) const {
    sockaddr_in const address = NativeEndpoint(endpoint);
    (void)::sendto(native, datagram.data(), datagram.size(), flags, AsAddress(address), sizeof(address));
}

DatagramSocket::Arrival DatagramSocket::Receive(std::span<std::byte> buffer, Endpoint* sender) const {
    sockaddr_in from{};
    socklen_t size = sizeof(from);
    bool const isNamed = sender != nullptr;
    // A datagram that was announced may be gone when it is read, so the read must not wait.
    ssize_t const length =
        ::recvfrom(native, buffer.data(), buffer.size(), MSG_DONTWAIT | MSG_TRUNC,
                   isNamed ? reinterpret_cast<sockaddr*>(&from) : nullptr, isNamed ? &size : nullptr);
    if (length < 0) {
        return {.length = 0, .hasArrived = false, .isRefused = isConnected && errno == ECONNREFUSED};
    }
    if (isNamed) {
        *sender = {ntohl(from.sin_addr.s_addr), ntohs(from.sin_port)};
    }
    return {.length = static_cast<std::size_t>(length), .hasArrived = true, .isRefused = false};
}

DatagramSocket::Wait DatagramSocket::WaitReadable(std::initializer_list<DatagramSocket const*> sockets,
                                                  microseconds period) {
    std::array<pollfd, 2> waiting{};
    std::ranges::transform(sockets, waiting.begin(), [](auto const* each) { return pollfd{each->native, POLLIN, 0}; });
    Wait wait;
    wait.waited = WaitFor(std::span(waiting).first(sockets.size()), period);
    auto const* const found = std::ranges::find_if(waiting, [](pollfd const& each) { return each.revents != 0; });
    if (found != waiting.end()) {
        wait.readable = *(sockets.begin() + (found - waiting.begin()));
    }
    return wait;
}

} // namespace harvlink
