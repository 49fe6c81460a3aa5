#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace harvlink::recording {

/// What stands before the IP header of a captured packet.
enum class LinkLayer {
    Ethernet,
    Cooked, ///< Linux, "any" interface
    Cooked2,
    Loopback, ///< a number of four bytes, in either byte order, for the protocol
    RawIp,
};

struct UdpDatagram {
    std::uint32_t from = 0; ///< IPv4 addresses, the first number highest
    std::uint32_t to = 0;
    std::uint16_t fromPort = 0;
    std::uint16_t toPort = 0;
    std::span<std::byte const> payload; ///< part of the packet
};

enum class FrameContent {
    Datagram,
    Other, ///< not UDP over IPv4
    Fragment, ///< a part of a datagram; addresses only
    CutShort, ///< the sniffer kept less than the packet; the payload is empty
    Malformed, ///< its lengths contradict each other; the payload is empty
};

/// Takes a packet apart. `wireSize` is its size before the sniffer cut it. Of what is not a whole datagram, those fields are set
/// that the packet has.
FrameContent ParseFrame(LinkLayer link, std::span<std::byte const> packet, std::size_t wireSize, UdpDatagram& datagram);

} // namespace harvlink::recording
