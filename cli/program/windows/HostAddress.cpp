#include "cli/program/HostAddress.h"

#include <array>
#include <memory>
#include <stdexcept>
#include <system_error>

#include <fmt/format.h>

// clang-format off
#include <winsock2.h>
#include <ws2tcpip.h>
// clang-format on

#include "cli/program/windows/Sockets.h"

namespace harvlink::cli {

std::string AddressOf(std::string const& host) {
    NeedSockets();
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_DGRAM;
    addrinfo* found = nullptr;
    int const problem = ::getaddrinfo(host.c_str(), nullptr, &hints, &found);
    if (problem != 0) {
        throw std::runtime_error(
            fmt::format("can't find the address of {}: {}", host, std::system_category().message(problem)));
    }
    std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> const owned(found, ::freeaddrinfo);
    return AddressText(::ntohl(reinterpret_cast<sockaddr_in const*>(found->ai_addr)->sin_addr.s_addr));
}

std::uint32_t AddressNumber(std::string const& address) {
    in_addr native{};
    return ::inet_pton(AF_INET, address.c_str(), &native) == 1 ? ::ntohl(native.s_addr) : 0;
}

std::string AddressText(std::uint32_t address) {
    in_addr native{};
    native.s_addr = ::htonl(address);
    std::array<char, INET_ADDRSTRLEN> text{};
    ::inet_ntop(AF_INET, &native, text.data(), text.size());
    return text.data();
}

std::string RouteCommand(std::string const& host) {
    return "Find-NetRoute -RemoteIPAddress " + host + " in PowerShell";
}

std::string PingCommand(std::string const& host) {
    return "ping -n 3 " + host;
}

} // namespace harvlink::cli
