#pragma once

#include <cstdint>
#include <string>

#include <netinet/in.h>

#include "harvlink/StatusInfo.h"
#include "wire/DatagramTransport.h"

namespace harvlink {

inline constexpr std::uint16_t RobotPort = 10040;
inline constexpr std::uint16_t FilePort = 10041;

/// Two UDP sockets, neither bound nor connected. The one place of the library that talks to the operating system's network.
class UdpTransport final : public DatagramTransport {
public:
    UdpTransport() = default;
    UdpTransport(UdpTransport&&) = delete;
    ~UdpTransport() override;

    /// Makes the sockets. Fails with SocketOpenError, "Failed to create socket."; what was made is closed by the
    /// destructor. An address that can't be read is not an error here: nobody will answer it.
    StatusInfo Open(std::string const& ipAddress);

    void Send(Division division, std::span<std::byte const> datagram) override;
    std::size_t Receive(std::span<std::byte> buffer, timeval period) override;

private:
    int robotSocket = -1;
    int fileSocket = -1;
    sockaddr_in robotEndpoint{};
    sockaddr_in fileEndpoint{};
};

} // namespace harvlink
