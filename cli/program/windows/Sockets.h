#pragma once

// clang-format off
#include <winsock2.h>
#include <ws2tcpip.h>
// clang-format on

#include <system_error>

namespace harvlink::cli {

/// Before the first use of a socket or a name. The end of the process stops it.
inline void NeedSockets() {
    static int const problem = [] {
        WSADATA ignored{};
        return ::WSAStartup(MAKEWORD(2, 2), &ignored);
    }();
    if (problem != 0) {
        throw std::system_error(problem, std::system_category(), "can't open a socket");
    }
}

} // namespace harvlink::cli
