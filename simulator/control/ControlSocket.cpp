#include "simulator/control/ControlSocket.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <exception>
#include <system_error>

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace harvlink::simulator {

namespace {

constexpr std::size_t LargestPacket = 65536;
constexpr int WaitingClients = 16;
constexpr std::chrono::seconds LongestRequest{1};
constexpr std::chrono::seconds LongestAnswer{10};

struct Name {
    sockaddr_un address{};
    socklen_t size = 0;
};

/// A name that begins with a zero byte is abstract.
Name NameFor(std::string const& address) {
    std::string const text = "harvlink-sim/" + address;
    Name name;
    name.address.sun_family = AF_UNIX;
    std::memcpy(&name.address.sun_path[1], text.data(), text.size()); // an IPv4 address fits
    name.size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + text.size());
    return name;
}

Descriptor NewSocket() {
    return Descriptor(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
}

void LimitWaits(int descriptor, std::chrono::seconds limit) {
    timeval const period{limit.count(), 0};
    setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &period, sizeof(period));
    setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &period, sizeof(period));
}

/// Abstract names have no permissions, so the other side is asked who it is.
bool IsSameUserOrRoot(int descriptor) {
    ucred other{};
    socklen_t size = sizeof(other);
    return getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &other, &size) == 0 &&
           (other.uid == geteuid() || other.uid == 0);
}

void Send(int descriptor, std::string const& packet) {
    if (send(descriptor, packet.data(), packet.size(), MSG_NOSIGNAL) < 0) {
        throw std::system_error(errno, std::generic_category());
    }
}

std::string Receive(int descriptor) {
    std::string packet(LargestPacket, '\0');
    auto const size = recv(descriptor, packet.data(), packet.size(), 0);
    if (size <= 0) {
        throw std::system_error(size == 0 ? ECONNRESET : errno, std::generic_category());
    }
    packet.resize(static_cast<std::size_t>(size));
    return packet;
}

std::vector<std::string> SplitAtZeros(std::string const& packet) {
    std::vector<std::string> words{""};
    for (char const byte : packet) {
        if (byte == '\0') {
            words.emplace_back();
        } else {
            words.back() += byte;
        }
    }
    return words;
}

std::string AnswerTo(std::vector<std::string> const& words,
                     std::function<std::string(std::span<std::string const>)> const& run) {
    try {
        return "+" + run(words);
    } catch (std::exception const& error) {
        return std::string("-") + error.what();
    }
}

} // namespace

ControlSocket ControlSocket::Listen(std::string const& address) {
    ControlSocket control;
    auto descriptor = NewSocket();
    auto const name = NameFor(address);
    auto const* const generic = reinterpret_cast<sockaddr const*>(&name.address);
    if (descriptor.IsOpen() && bind(descriptor.Get(), generic, name.size) == 0 &&
        listen(descriptor.Get(), WaitingClients) == 0) {
        control.descriptor_ = std::move(descriptor);
    }
    return control;
}

void ControlSocket::Serve(std::function<std::string(std::span<std::string const>)> const& run) const {
    Descriptor const client(accept4(Get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!client.IsOpen()) {
        return;
    }
    LimitWaits(client.Get(), LongestRequest);
    try {
        Send(client.Get(), IsSameUserOrRoot(client.Get()) ? AnswerTo(SplitAtZeros(Receive(client.Get())), run)
                                                          : "-this controller belongs to another user");
    } catch (std::system_error const&) {
        // The client has gone or says nothing; the next one is served.
    }
}

ControlAnswer AskController(std::string const& address, std::span<std::string const> words) {
    auto const server = NewSocket();
    auto const name = NameFor(address);
    if (!server.IsOpen() || connect(server.Get(), reinterpret_cast<sockaddr const*>(&name.address), name.size) != 0) {
        throw std::system_error(errno, std::generic_category(), "no controller runs on " + address);
    }
    LimitWaits(server.Get(), LongestAnswer);
    std::string packet;
    for (auto const& word : words) {
        packet += (packet.empty() ? "" : std::string(1, '\0')) + word;
    }
    Send(server.Get(), packet);
    auto const answer = Receive(server.Get());
    return {answer.front() == '+', answer.substr(1)};
}

} // namespace harvlink::simulator
