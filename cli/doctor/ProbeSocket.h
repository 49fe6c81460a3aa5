#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace harvlink::cli {

/// A socket for what the library does not report: who sent a datagram, and what came back by ICMP.
class ProbeSocket {
public:
    enum class Event {
        Nothing, ///< within the time
        Datagram,
        PortClosed, ///< the host says that no program listens on the port
        Unreachable, ///< this computer or a router has no route to the host
    };

    struct Received {
        Event event = Event::Nothing;
        std::size_t length = 0;
        std::uint32_t sender = 0; ///< of the datagram, or of the ICMP message; 0: not known
        bool isFromHost = true;
        std::uint16_t port = 0; ///< from which the datagram came, or to which the datagram went that an error is about
        int error = 0; ///< of the operating system, by its name in <cerrno>
    };

    /// Throws std::system_error if no socket can be opened.
    explicit ProbeSocket(std::string const& host);
    ProbeSocket(ProbeSocket const&) = delete;
    ProbeSocket& operator=(ProbeSocket const&) = delete;
    ~ProbeSocket();

    /// Returns 0 or the error of the operating system, by its name in <cerrno>.
    int Send(std::uint16_t port, std::span<std::byte const> datagram) const;

    /// Waits for the next datagram or error. Returns early if a signal interrupts it.
    Received Receive(std::span<std::byte> buffer, std::chrono::microseconds time) const;

    /// Whether the address is one of this computer, which itself reports a host that it does not find.
    static bool IsOwn(std::uint32_t address);

private:
#if defined(_WIN32)
    std::uintptr_t socket_ = 0;
    mutable std::uint16_t lastPort_ = 0; ///< to which a datagram was sent
#else
    Received ReadError() const;

    int descriptor_ = -1;
#endif
    std::uint32_t host_ = 0;
};

} // namespace harvlink::cli
