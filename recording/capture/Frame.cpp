#include "recording/capture/Frame.h"

#include <algorithm>
#include <optional>

namespace harvlink::recording {

namespace {

using Bytes = std::span<std::byte const>;

constexpr std::uint16_t EtherTypeIpv4 = 0x0800;
constexpr std::size_t LeastIpHeader = 20;
constexpr std::size_t UdpHeader = 8;

/// In network order. The caller has checked that the bytes are there.
std::uint16_t Number16(Bytes bytes, std::size_t place) {
    return static_cast<std::uint16_t>((std::to_integer<unsigned>(bytes[place]) << 8U) |
                                      std::to_integer<unsigned>(bytes[place + 1]));
}

std::uint32_t Number32(Bytes bytes, std::size_t place) {
    return (std::uint32_t{Number16(bytes, place)} << 16U) | Number16(bytes, place + 2);
}

bool IsVlanTag(std::uint16_t etherType) {
    return etherType == 0x8100 || etherType == 0x88A8 || etherType == 0x9100;
}

/// What follows a header of so many bytes, if it is IPv4. `typePlace` is that of the EtherType; VLAN tags stand after the header.
std::optional<Bytes> AfterHeader(Bytes packet, std::size_t typePlace, std::size_t headerSize) {
    constexpr std::size_t TagSize = 4;
    if (packet.size() < headerSize) {
        return std::nullopt;
    }
    std::uint16_t type = Number16(packet, typePlace);
    Bytes rest = packet.subspan(headerSize);
    while (IsVlanTag(type) && rest.size() >= TagSize) {
        type = Number16(rest, 2);
        rest = rest.subspan(TagSize);
    }
    return type == EtherTypeIpv4 ? std::optional(rest) : std::nullopt;
}

std::optional<Bytes> AfterLoopbackHeader(Bytes packet) {
    constexpr std::size_t Size = 4;
    constexpr std::uint32_t Ipv4 = 2; // AF_INET of every system, in the byte order of the one that sniffed
    constexpr std::uint32_t Ipv4Swapped = Ipv4 << 24U;
    if (packet.size() < Size) {
        return std::nullopt;
    }
    std::uint32_t const family = Number32(packet, 0);
    return family == Ipv4 || family == Ipv4Swapped ? std::optional(packet.subspan(Size)) : std::nullopt;
}

std::optional<Bytes> IpPacket(LinkLayer link, Bytes packet) {
    switch (link) {
    case LinkLayer::Ethernet:
        return AfterHeader(packet, 12, 14);
    case LinkLayer::Cooked:
        return AfterHeader(packet, 14, 16);
    case LinkLayer::Cooked2:
        return AfterHeader(packet, 0, 20);
    case LinkLayer::Loopback:
        return AfterLoopbackHeader(packet);
    case LinkLayer::RawIp:
        return packet;
    }
    return std::nullopt;
}

/// `there` says how many bytes of it the packet had before it was cut.
FrameContent ParseUdp(Bytes bytes, std::size_t size, std::size_t there, UdpDatagram& datagram) {
    if (size < UdpHeader) {
        return FrameContent::Malformed;
    }
    if (bytes.size() < UdpHeader) {
        return there < UdpHeader ? FrameContent::Malformed : FrameContent::CutShort;
    }
    datagram.fromPort = Number16(bytes, 0);
    datagram.toPort = Number16(bytes, 2);
    std::size_t const length = Number16(bytes, 4);
    if (length < UdpHeader || length > size || length > there) {
        return FrameContent::Malformed;
    }
    if (length > bytes.size()) {
        return FrameContent::CutShort;
    }
    datagram.payload = bytes.subspan(UdpHeader, length - UdpHeader);
    return FrameContent::Datagram;
}

FrameContent ParseIp(Bytes bytes, std::size_t there, UdpDatagram& datagram) {
    constexpr unsigned Udp = 17;
    constexpr std::uint16_t MoreFragmentsAndOffset = 0x3FFF;
    if (bytes.empty() || std::to_integer<unsigned>(bytes[0]) >> 4U != 4) {
        return FrameContent::Other;
    }
    std::size_t const header = (std::to_integer<std::size_t>(bytes[0]) & 0xFU) * 4;
    if (header < LeastIpHeader || there < header) {
        return FrameContent::Malformed;
    }
    if (bytes.size() < header) {
        return FrameContent::CutShort;
    }
    if (std::to_integer<unsigned>(bytes[9]) != Udp) {
        return FrameContent::Other;
    }
    datagram.from = Number32(bytes, 12);
    datagram.to = Number32(bytes, 16);
    std::size_t const total = Number16(bytes, 2);
    if ((Number16(bytes, 6) & MoreFragmentsAndOffset) != 0) {
        return FrameContent::Fragment;
    }
    if (total < header) {
        return FrameContent::Malformed;
    }
    // Short frames are filled up after the packet.
    return ParseUdp(bytes.subspan(header, std::min(total, bytes.size()) - header), total - header, there - header,
                    datagram);
}

} // namespace

FrameContent ParseFrame(LinkLayer link, Bytes packet, std::size_t wireSize, UdpDatagram& datagram) {
    datagram = {};
    auto const ip = IpPacket(link, packet);
    if (!ip) {
        return FrameContent::Other;
    }
    std::size_t const cut = wireSize - std::min(wireSize, packet.size());
    return ParseIp(*ip, ip->size() + cut, datagram);
}

} // namespace harvlink::recording
