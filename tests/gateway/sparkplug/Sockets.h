#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace harvlink::test {

inline sockaddr_in SocketAddress(std::string const& address, std::uint16_t port) {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(port);
    inet_pton(AF_INET, address.c_str(), &place.sin_addr);
    return place;
}

inline int ListenAt(std::string const& address, std::uint16_t port) {
    int const listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int const on = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    auto const place = SocketAddress(address, port);
    if (bind(listener, reinterpret_cast<sockaddr const*>(&place), sizeof place) != 0 || listen(listener, 16) != 0) {
        close(listener);
        return -1;
    }
    return listener;
}

/// -1 if nobody listens there.
inline int ConnectTo(std::string const& address, std::uint16_t port) {
    int const connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    auto const place = SocketAddress(address, port);
    if (connect(connection, reinterpret_cast<sockaddr const*>(&place), sizeof place) != 0) {
        close(connection);
        return -1;
    }
    return connection;
}

inline bool SendAll(int connection, std::string_view bytes) {
    while (!bytes.empty()) {
        auto const sent = send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

} // namespace harvlink::test
