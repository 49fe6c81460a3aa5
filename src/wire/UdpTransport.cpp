#include "wire/UdpTransport.h"

#include <utility>

namespace harvlink {
namespace {

/// An address that can't be read leaves the endpoint zero. Without a port nothing can be sent to it; with one, a
/// controller on this very computer would answer.
Endpoint MakeEndpoint(std::string const& ipAddress, std::uint16_t port) {
    auto const address = ParseAddress(ipAddress);
    return address ? Endpoint{*address, port} : Endpoint{};
}

} // namespace

bool UdpTransport::IsHostAddress(std::string const& text) {
    constexpr unsigned firstGroup = 224; // from there on the first number names groups, and in the end all hosts
    bool const isWhole = text.find('\0') == std::string::npos;
    auto const first = ParseAddress(text).value_or(0) >> 24U;
    return isWhole && first > 0 && first < firstGroup;
}

StatusInfo UdpTransport::Open(std::string const& ipAddress, Peers whom) {
    peers = whom;
    robot.endpoint = MakeEndpoint(ipAddress, RobotPort);
    file.endpoint = MakeEndpoint(ipAddress, FilePort);
    bool const isRobotOpen = OpenSocket(robot);
    if (!OpenSocket(file) || !isRobotOpen) {
        bool const isMade = robot.socket.IsOpen() && file.socket.IsOpen();
        return StatusInformation(ErrorStatusCodes::SocketOpenError,
                                 isMade ? "There is no route to the controller." : "Failed to create socket.");
    }
    return StatusInformation(ErrorStatusCodes::Ok);
}

bool UdpTransport::OpenSocket(Port& port) const {
    port.socket = DatagramSocket::Open();
    return port.socket.IsOpen() && (!IsConnected() || port.socket.Connect(port.endpoint));
}

bool UdpTransport::Renew(Division division) {
    Port& port = PortOf(division);
    Port fresh{{}, port.endpoint};
    // Bound before the old one is closed, or the system might hand out the same source port once more.
    if (!OpenSocket(fresh) || (!IsConnected() && !fresh.socket.TakePort())) {
        return false;
    }
    port = std::move(fresh);
    return true;
}

void UdpTransport::Send(Division division, std::span<std::byte const> datagram) {
    Port const& port = PortOf(division);
    // A datagram that can't be sent counts as lost: it shows as a time-out.
    if (IsConnected()) {
        port.socket.Send(datagram);
    } else {
        port.socket.SendTo(port.endpoint, datagram);
    }
}

Arrival UdpTransport::Receive(Division asked, std::span<std::byte> buffer, std::chrono::microseconds period) {
    Port const& wanted = PortOf(asked);
    auto const wait = IsConnected() ? DatagramSocket::WaitReadable({&wanted.socket}, period)
                                    : DatagramSocket::WaitReadable({&robot.socket, &file.socket}, period);
    Arrival arrival;
    if (wait.readable != nullptr) {
        arrival = Read(*wait.readable, wanted.endpoint, buffer);
    }
    arrival.waited = wait.waited;
    return arrival;
}

Arrival UdpTransport::Read(DatagramSocket const& socket, Endpoint const& asked, std::span<std::byte> buffer) const {
    bool const isNamed = peers == Peers::AnyoneNamed;
    Endpoint sender;
    auto const read = socket.Receive(buffer, isNamed ? &sender : nullptr);
    Arrival arrival(read.length);
    arrival.isRefused = read.isRefused;
    arrival.isEmpty = read.hasArrived && read.length == 0;
    arrival.isForeign = read.hasArrived && isNamed && sender != asked;
    return arrival;
}

} // namespace harvlink
