#include "system/DatagramSocket.h"

#include <algorithm>
#include <array>

#include <winsock2.h>

#include "system/windows/ShortWait.h"

namespace harvlink {
namespace {

using std::chrono::microseconds;
using std::chrono::nanoseconds;
using Clock = std::chrono::steady_clock;

/// Not in the headers of MinGW-w64: whether a closed port, or a datagram that lived too long, is an error of the socket.
constexpr DWORD reportClosedPort = _WSAIOW(IOC_VENDOR, 12);
constexpr DWORD reportLostWay = _WSAIOW(IOC_VENDOR, 15);
constexpr std::size_t longestDatagram = 65'536;

/// What an error of a socket means here. All others are nothing: the datagram counts as lost, and a wait goes on.
enum class Meaning : std::uint8_t { Nothing, Cut, Refused, Closed };

Meaning MeaningOf(int error) {
    switch (error) {
    case WSAEMSGSIZE:
        return Meaning::Cut;
    case WSAECONNRESET: // that nobody listens arrives by this name for UDP
    case WSAECONNREFUSED:
        return Meaning::Refused;
    case WSAENOTSOCK:
    case WSAEBADF:
    case WSANOTINITIALISED:
        return Meaning::Closed;
    default:
        return Meaning::Nothing;
    }
}

/// Starts what all sockets of the process need, once. It is never stopped: a socket may be closed at the very end.
bool HasSockets() {
    static bool const isStarted = [] {
        WSADATA ignored{};
        return ::WSAStartup(MAKEWORD(2, 2), &ignored) == 0;
    }();
    return isStarted;
}

sockaddr_in NativeEndpoint(Endpoint const& endpoint) {
    sockaddr_in native{};
    native.sin_family = AF_INET;
    native.sin_addr.s_addr = ::htonl(endpoint.address);
    native.sin_port = ::htons(endpoint.port);
    return native;
}

sockaddr const* AsAddress(sockaddr_in const& endpoint) {
    return reinterpret_cast<sockaddr const*>(&endpoint);
}

/// Whether an answer of another host's system, such as that nobody listens, counts as an error of the socket.
bool Report(SOCKET socket, DWORD what, BOOL isReported) {
    DWORD ignored = 0;
    return ::WSAIoctl(socket, what, &isReported, sizeof(isReported), nullptr, 0, &ignored, nullptr, nullptr) == 0;
}

bool NeverWait(SOCKET socket) {
    u_long isOn = 1;
    return ::ioctlsocket(socket, static_cast<long>(FIONBIO), &isOn) == 0;
}

/// Whether what a socket was announced for is a datagram. Asking takes an error off the socket.
bool HasDatagram(SOCKET socket) {
    char first = 0;
    return ::recv(socket, &first, 1, MSG_PEEK) != SOCKET_ERROR || MeaningOf(::WSAGetLastError()) == Meaning::Cut;
}

/// Views of the same bytes, as the system takes them.
WSABUF BufferOf(std::span<std::byte> bytes) {
    return {static_cast<ULONG>(bytes.size()), reinterpret_cast<char*>(bytes.data())};
}

int SizeOf(std::span<std::byte const> datagram) {
    return static_cast<int>(datagram.size());
}

char const* BytesOf(std::span<std::byte const> datagram) {
    return reinterpret_cast<char const*>(datagram.data());
}

} // namespace

DatagramSocket::~DatagramSocket() {
    if (IsOpen()) {
        ::closesocket(native);
    }
}

DatagramSocket DatagramSocket::Open() {
    DatagramSocket made(HasSockets() ? ::WSASocketW(AF_INET, SOCK_DGRAM, IPPROTO_UDP, nullptr, 0,
                                                    WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT)
                                     : INVALID_SOCKET);
    if (made.IsOpen() && !NeverWait(made.native)) {
        return {};
    }
    if (made.IsOpen()) { // where it can't be switched off, it is not there
        (void)Report(made.native, reportClosedPort, FALSE);
        (void)Report(made.native, reportLostWay, FALSE);
    }
    return made;
}

bool DatagramSocket::Connect(Endpoint const& endpoint) {
    sockaddr_in const address = NativeEndpoint(endpoint);
    (void)Report(native, reportClosedPort, TRUE);
    isConnected = ::connect(native, AsAddress(address), sizeof(address)) == 0;
    return isConnected;
}

bool DatagramSocket::TakePort() {
    sockaddr_in const anyPort = NativeEndpoint({});
    return ::bind(native, AsAddress(anyPort), sizeof(anyPort)) == 0;
}

void DatagramSocket::Send(std::span<std::byte const> datagram) const {
    if (::send(native, BytesOf(datagram), SizeOf(datagram), 0) == SOCKET_ERROR &&
        MeaningOf(::WSAGetLastError()) == Meaning::Refused) {
        // That was the answer to an earlier datagram; this one has not left yet.
        (void)::send(native, BytesOf(datagram), SizeOf(datagram), 0);
    }
}

void DatagramSocket::SendTo(Endpoint const& endpoint, std::span<std::byte const> datagram) const {
    sockaddr_in const address = NativeEndpoint(endpoint);
    (void)::sendto(native, BytesOf(datagram), SizeOf(datagram), 0, AsAddress(address), sizeof(address));
}

/// The length of a datagram that was cut is not told, so what does not fit goes to a place of its own.
DatagramSocket::Arrival DatagramSocket::Receive(std::span<std::byte> buffer, Endpoint* sender) const {
    std::array<std::byte, longestDatagram> rest;
    std::array<WSABUF, 2> parts{BufferOf(buffer), BufferOf(rest)};
    sockaddr_in from{};
    int size = sizeof(from);
    DWORD length = 0;
    DWORD flags = 0;
    int const result = ::WSARecvFrom(native, parts.data(), static_cast<DWORD>(parts.size()), &length, &flags,
                                     reinterpret_cast<sockaddr*>(&from), &size, nullptr, nullptr);
    Meaning const meaning = result == 0 ? Meaning::Nothing : MeaningOf(::WSAGetLastError());
    if (result != 0 && meaning != Meaning::Cut) {
        return {.length = 0, .hasArrived = false, .isRefused = isConnected && meaning == Meaning::Refused};
    }
    if (sender != nullptr) {
        *sender = {::ntohl(from.sin_addr.s_addr), ::ntohs(from.sin_port)};
    }
    return {.length = length, .hasArrived = true, .isRefused = false};
}

/// Only a closed socket ends a wait early. Any other error of one that is not connected is taken off it, and the wait goes on.
DatagramSocket::Wait DatagramSocket::WaitReadable(std::initializer_list<DatagramSocket const*> sockets,
                                                  microseconds period) {
    std::array<WSAPOLLFD, 2> waiting{};
    std::ranges::transform(sockets, waiting.begin(), [](auto const* each) {
        return WSAPOLLFD{each->native, POLLRDNORM, 0};
    });
    auto const start = Clock::now();
    for (nanoseconds waited{};;) {
        ShortWait const wait(period - waited);
        int const count = ::WSAPoll(waiting.data(), static_cast<ULONG>(sockets.size()), wait.Milliseconds());
        waited = std::min<nanoseconds>(Clock::now() - start, period);
        auto const found = std::ranges::find_if(waiting, [](WSAPOLLFD const& each) { return each.revents != 0; });
        if (count > 0 && found != waiting.end()) {
            auto const* const readable = *(sockets.begin() + (found - waiting.begin()));
            bool const isClosed = (found->revents & POLLNVAL) != 0;
            if (isClosed || readable->isConnected || HasDatagram(readable->native)) {
                return {readable, waited};
            }
        } else if (count < 0) {
            ::Sleep(1); // this computer is short of something
        }
        if (waited >= period) {
            return {nullptr, waited};
        }
    }
}

} // namespace harvlink
