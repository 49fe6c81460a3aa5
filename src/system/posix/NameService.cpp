#include "system/NameService.h"

#include <memory>
#include <optional>

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include "system/Endpoint.h"

namespace harvlink {

std::optional<std::uint32_t> ParseAddress(std::string const& text) {
    in_addr address{};
    if (::inet_pton(AF_INET, text.c_str(), &address) != 1) {
        return std::nullopt;
    }
    return ntohl(address.s_addr);
}

/// The library is linked to stay.
void StayLoaded() {}

NameAnswer AskNameService(std::string const& name) {
    addrinfo wanted{};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_DGRAM;
    addrinfo* answer = nullptr;
    if (int const error = ::getaddrinfo(name.c_str(), nullptr, &wanted, &answer); error != 0) {
        return {{}, ::gai_strerror(error)};
    }
    std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> const found(answer, ::freeaddrinfo);
    NameAnswer named;
    for (auto const* each = found.get(); each != nullptr; each = each->ai_next) {
        named.addresses.push_back(ntohl(reinterpret_cast<sockaddr_in const*>(each->ai_addr)->sin_addr.s_addr));
    }
    return named;
}

} // namespace harvlink
