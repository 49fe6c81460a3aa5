#include "cli/program/HostAddress.h"

#include <array>
#include <memory>
#include <stdexcept>

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

} // namespace harvlink::cli
