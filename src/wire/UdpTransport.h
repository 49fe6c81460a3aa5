#pragma once

#include <cstdint>
#include <string>

#include "harvlink/StatusInfo.h"
#include "system/DatagramSocket.h"
#include "wire/DatagramTransport.h"

namespace harvlink {

inline constexpr std::uint16_t RobotPort = 10040;
inline constexpr std::uint16_t FilePort = 10041;

/// The two UDP sockets of a connection, one for each port of the controller. A fleet has sockets of its own; nothing
/// else of the library sends or receives datagrams.
class UdpTransport final : public DatagramTransport {
public:
    /// Whom the sockets listen to.
    enum class Peers : std::uint8_t {
        Anyone, ///< whoever knows the source port, on either socket: neither is connected
        AnyoneNamed, ///< the same, and each datagram is told apart by its sender, which makes an exchange 1 % slower
        Controller, ///< both are connected, so that the system passes on nothing else; only the one asked is listened to
    };

    /// Whether a text is the address of a host: IPv4 in dotted form, neither of all hosts nor of a group of them.
    static bool IsHostAddress(std::string const& text);

    /// Makes the sockets. Fails with SocketOpenError, "Failed to create socket.", or if
    /// only the controller is listened to "There is no route to the controller."; what was made is closed by the
    /// destructor. An address that can't be read is not an error while anyone is listened to: nobody will answer it.
    StatusInfo Open(std::string const& ipAddress, Peers whom = Peers::Anyone);

    void Send(Division division, std::span<std::byte const> datagram) override;
    Arrival Receive(Division asked, std::span<std::byte> buffer, std::chrono::microseconds period) override;
    bool Renew(Division division) override;

private:
    struct Port {
        DatagramSocket socket;
        Endpoint endpoint;
    };

    Port& PortOf(Division division) { return division == Division::FileControl ? file : robot; }
    bool IsConnected() const { return peers == Peers::Controller; }
    Arrival Read(DatagramSocket const& socket, Endpoint const& asked, std::span<std::byte> buffer) const;
    bool OpenSocket(Port& port) const;

    Port robot;
    Port file;
    Peers peers = Peers::Anyone;
};

} // namespace harvlink
