#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include <netinet/in.h>

namespace harvlink::cli {

/// "192.168.255.1"
std::string AddressText(in_addr address);

/// A socket of its own for questions that the library does not answer: who sent a datagram, and what came back by ICMP.
class ProbeSocket {
public:
    enum class Event {
        Nothing, ///< within the time
        Datagram,
        PortClosed, ///< the host says that nobody listens on the port
        Unreachable, ///< this computer or one on the way knows no way to the host
    };

    struct Received {
        Event event = Event::Nothing;
        std::size_t length = 0;
        in_addr sender{}; ///< of the datagram, or of the ICMP message
        bool isFromHost = true;
        std::uint16_t port = 0; ///< whence the datagram came, or where the one was sent that an error is about
        int error = 0; ///< of the operating system
    };

    /// Throws std::system_error if this computer has no socket left.
    explicit ProbeSocket(std::string const& host);
    ProbeSocket(ProbeSocket const&) = delete;
    ProbeSocket& operator=(ProbeSocket const&) = delete;
    ~ProbeSocket();

    /// Returns 0 or the error of the operating system.
    int Send(std::uint16_t port, std::span<std::byte const> datagram) const;

    /// Waits for the next thing that comes. Returns early if a signal interrupts it.
    Received Receive(std::span<std::byte> buffer, std::chrono::microseconds time) const;

    /// Whether this computer itself has the address, as that of messages about hosts which it does not find.
    static bool IsOwn(in_addr address);

private:
    Received ReadError() const;

    int descriptor_ = -1;
    sockaddr_in host_{};
};

} // namespace harvlink::cli
