#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include <netinet/in.h>

namespace harvlink::simulator {

/// Owner of a file descriptor.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~Descriptor();

    int Get() const { return descriptor_; }
    bool IsOpen() const { return descriptor_ >= 0; }

private:
    int descriptor_ = -1;
};

/// A non-blocking UDP socket bound to one address and port.
class Socket {
public:
    /// On failure the socket is not open and errno tells why.
    static Socket Bind(std::string const& address, std::uint16_t port);

    bool IsOpen() const { return descriptor_.IsOpen(); }
    int Get() const { return descriptor_.Get(); }

    /// Where it is bound.
    sockaddr_in Address() const;

    /// Takes one datagram, cut at the buffer's size, without waiting. -1 if there is none, its length otherwise.
    std::ptrdiff_t Receive(std::span<std::byte> buffer, sockaddr_in& from) const;

    /// A datagram that can't be sent is lost, as any datagram may be.
    void Send(std::span<std::byte const> datagram, sockaddr_in const& to) const;

private:
    Descriptor descriptor_;
};

} // namespace harvlink::simulator
