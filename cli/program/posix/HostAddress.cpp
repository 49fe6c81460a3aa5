#include "cli/program/HostAddress.h"

#include <array>
#include <memory>
#include <stdexcept>

#include <arpa/inet.h>
#include <fmt/format.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace harvlink::cli {

std::string AddressOf(std::string const& host) {
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_DGRAM;
    addrinfo* found = nullptr;
    int const problem = ::getaddrinfo(host.c_str(), nullptr, &hints, &found);
    if (problem != 0) {
        throw std::runtime_error(fmt::format("can't find the address of {}: {}", host, ::gai_strerror(problem)));
    }
    std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> const owned(found, ::freeaddrinfo);
    std::array<char, NI_MAXHOST> address{};
    ::getnameinfo(found->ai_addr, found->ai_addrlen, address.data(), address.size(), nullptr, 0, NI_NUMERICHOST);
    return address.data();
}

std::uint32_t AddressNumber(std::string const& address) {
    in_addr native{};
    return ::inet_pton(AF_INET, address.c_str(), &native) == 1 ? ntohl(native.s_addr) : 0;
}

std::string AddressText(std::uint32_t address) {
    in_addr const native{htonl(address)};
    std::array<char, INET_ADDRSTRLEN> text{};
    ::inet_ntop(AF_INET, &native, text.data(), text.size());
    return text.data();
}

std::string RouteCommand(std::string const& host) {
    return "ip route get " + host;
}

std::string PingCommand(std::string const& host) {
    return "ping -c 3 " + host;
}

} // namespace harvlink::cli
