#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <utility>

#include "system/Endpoint.h"
#include "system/NativeSocket.h"

namespace harvlink {

/// A UDP socket that neither sends nor reads with a wait. One source for each system; the only ones that know its sockets.
class DatagramSocket {
public:
    /// Not open.
    DatagramSocket() = default;
    DatagramSocket(DatagramSocket&& other) noexcept { *this = std::move(other); }
    DatagramSocket& operator=(DatagramSocket&& other) noexcept {
        std::swap(native, other.native);
        std::swap(isConnected, other.isConnected);
        return *this;
    }
    ~DatagramSocket();

    /// For any sender, until it is connected. That nobody listens on a port is silence.
    /// @return one that is not open if this computer refused
    static DatagramSocket Open();

    bool IsOpen() const { return native != NoSocket; }
    NativeSocket Native() const { return native; }

    /// From now on the system passes on nothing but what comes from there, and says if nobody listens there.
    /// @return false if this computer refused
    bool Connect(Endpoint const& endpoint);

    /// Takes a free source port at once rather than with the first datagram.
    /// @return false if this computer refused
    bool TakePort();

    /// A datagram that can't be sent counts as lost. Send is for a connected socket, SendTo for any other.
    /// @{
    void Send(std::span<std::byte const> datagram) const;
    void SendTo(Endpoint const& endpoint, std::span<std::byte const> datagram) const;
    /// @}

    /// What was there to be read.
    struct Arrival {
        std::size_t length = 0; ///< of the whole datagram, also if it was cut
        bool hasArrived = false; ///< a datagram; an empty one too
        bool isRefused = false; ///< the host says that nobody listens on the port; only of a connected socket
    };
    /// @param sender filled in if it is given
    Arrival Receive(std::span<std::byte> buffer, Endpoint* sender = nullptr) const;

    /// What a wait ended with.
    struct Wait {
        DatagramSocket const* readable = nullptr; ///< the first that has something to read, or none
        std::chrono::nanoseconds waited{}; ///< how much of the period has passed
    };
    /// Until one of at most two has something to read, or the period is over, whatever interrupts it.
    static Wait WaitReadable(std::initializer_list<DatagramSocket const*> sockets, std::chrono::microseconds period);

private:
    explicit DatagramSocket(NativeSocket made) : native(made) {}

    NativeSocket native = NoSocket;
    bool isConnected = false;
};

} // namespace harvlink
