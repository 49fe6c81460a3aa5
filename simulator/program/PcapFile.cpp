#include "simulator/program/PcapFile.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <system_error>

namespace harvlink::simulator {

namespace {

/// The numbers of the file have the byte order of the writing machine. Readers recognise it by the first number.
struct FileHeader {
    std::uint32_t magic = 0xA1B23C4D; ///< times in nanoseconds
    std::uint16_t majorVersion = 2;
    std::uint16_t minorVersion = 4;
    std::uint64_t reserved = 0;
    std::uint32_t longestRecord = 65535;
    std::uint32_t linkType = 101; ///< each record begins with an IP header
};
static_assert(sizeof(FileHeader) == 24);

struct RecordHeader {
    std::uint32_t seconds = 0;
    std::uint32_t nanoseconds = 0;
    std::uint32_t length = 0;
    std::uint32_t lengthOnTheWire = 0;
};
static_assert(sizeof(RecordHeader) == 16);

/// IPv4 and UDP, in network order. The checksums stay 0, because the kernel has already checked the datagram.
struct NetworkHeaders {
    std::uint8_t versionAndSize = 0x45;
    std::uint8_t service = 0;
    std::uint16_t totalLength = 0;
    std::uint32_t fragment = 0;
    std::uint8_t timeToLive = 64;
    std::uint8_t protocol = IPPROTO_UDP;
    std::uint16_t checksum = 0;
    in_addr_t from = 0;
    in_addr_t to = 0;
    in_port_t fromPort = 0;
    in_port_t toPort = 0;
    std::uint16_t udpLength = 0;
    std::uint16_t udpChecksum = 0;
};
static_assert(sizeof(NetworkHeaders) == 28);

std::uint16_t NetworkOrder(std::size_t length) {
    return htons(static_cast<std::uint16_t>(length));
}

template <typename Header>
void Put(std::ofstream& file, Header const& header) {
    file.write(reinterpret_cast<char const*>(&header), sizeof(header));
}

RecordHeader RecordNow(std::size_t length) {
    auto const now = std::chrono::system_clock::now().time_since_epoch();
    auto const seconds = std::chrono::floor<std::chrono::seconds>(now);
    return {static_cast<std::uint32_t>(seconds.count()),
            static_cast<std::uint32_t>(std::chrono::nanoseconds(now - seconds).count()),
            static_cast<std::uint32_t>(length), static_cast<std::uint32_t>(length)};
}

} // namespace

PcapFile::PcapFile(std::string const& path) : file_(path, std::ios::binary) {
    if (!file_) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    Put(file_, FileHeader{});
    if (!file_.flush()) {
        throw std::system_error(errno, std::generic_category(), path);
    }
}

void PcapFile::Write(sockaddr_in const& from, sockaddr_in const& to, std::span<std::byte const> datagram) {
    NetworkHeaders headers;
    headers.totalLength = NetworkOrder(sizeof(headers) + datagram.size());
    headers.udpLength = NetworkOrder(8 + datagram.size());
    headers.from = from.sin_addr.s_addr;
    headers.to = to.sin_addr.s_addr;
    headers.fromPort = from.sin_port;
    headers.toPort = to.sin_port;
    Put(file_, RecordNow(sizeof(headers) + datagram.size()));
    Put(file_, headers);
    file_.write(reinterpret_cast<char const*>(datagram.data()), static_cast<std::streamsize>(datagram.size()));
    file_.flush();
}

} // namespace harvlink::simulator
