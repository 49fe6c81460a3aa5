#include "system/WakeUp.h"

#include <array>
#include <span>

#include <winsock2.h>

#include "system/DatagramSocket.h"
#include "system/windows/ShortWait.h"

namespace harvlink {
namespace {

/// Waiting takes sockets alone, so this is one that sends to itself.
SOCKET MakeOwnPeer() {
    if (!DatagramSocket::Open().IsOpen()) { // starts the sockets of the process
        return INVALID_SOCKET;
    }
    SOCKET const made =
        ::WSASocketW(AF_INET, SOCK_DGRAM, IPPROTO_UDP, nullptr, 0, WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
    sockaddr_in own{};
    own.sin_family = AF_INET;
    own.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
    auto* const address = reinterpret_cast<sockaddr*>(&own);
    int size = sizeof(own);
    u_long isOn = 1;
    if (made != INVALID_SOCKET && ::bind(made, address, size) == 0 && ::getsockname(made, address, &size) == 0 &&
        ::connect(made, address, size) == 0 && ::ioctlsocket(made, static_cast<long>(FIONBIO), &isOn) == 0) {
        return made;
    }
    ::closesocket(made);
    return INVALID_SOCKET;
}

} // namespace

WakeUp::WakeUp() : readEnd(MakeOwnPeer()), writeEnd(readEnd) {}

WakeUp::~WakeUp() {
    if (IsOpen()) {
        ::closesocket(readEnd);
    }
}

void WakeUp::Set() const {
    char const one = 1;
    (void)::send(writeEnd, &one, sizeof(one), 0); // what is full is set already
}

void WakeUp::Clear() const {
    std::array<char, 8> ignored{};
    while (::recv(readEnd, ignored.data(), static_cast<int>(ignored.size()), 0) > 0) {
    }
}

bool WakeUp::Wait(std::chrono::milliseconds time) const {
    WSAPOLLFD waited{readEnd, POLLRDNORM, 0};
    ShortWait const wait(time);
    return ::WSAPoll(&waited, 1, wait.Milliseconds()) == 1;
}

} // namespace harvlink
