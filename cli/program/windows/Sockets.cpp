#include "cli/program/windows/Sockets.h"

#include <system_error>

#include <winsock2.h>

namespace harvlink::cli {

void NeedSockets() {
    static int const problem = [] {
        WSADATA ignored{};
        return ::WSAStartup(MAKEWORD(2, 2), &ignored);
    }();
    if (problem != 0) {
        throw std::system_error(problem, std::system_category(), "can't open a socket");
    }
}

} // namespace harvlink::cli
