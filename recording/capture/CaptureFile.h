#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "recording/capture/Frame.h"
#include "recording/model/RecordingError.h"
#include "recording/model/Records.h"

struct pcap;

/// @file
/// What packet sniffers write. Nothing outside of this folder includes the header of libpcap.

namespace harvlink::recording {

/// A datagram as a sniffer saw it.
struct CapturedDatagram {
    Microseconds time = 0; ///< UTC
    UdpDatagram datagram;
};

/// What could not be taken from a capture, of the wanted ports where the packet shows them.
struct CaptureLosses {
    std::uint64_t fragments = 0; ///< packets that are parts of a datagram
    std::uint64_t cutShort = 0; ///< by the sniffer
    std::uint64_t malformed = 0; ///< their lengths contradict each other
};

/// Reads the UDP datagrams over IPv4 of a capture, one after the other: classic and new format; Ethernet with any number of
/// VLAN tags, Linux cooked (both versions), loopback, raw IP.
class CaptureFile {
public:
    /// Datagrams that neither come from nor go to one of the ports are passed over. Throws RecordingError.
    CaptureFile(std::filesystem::path const& path, std::vector<std::uint16_t> ports);

    /// Reads from an open file, which it closes. `name` stands in errors.
    CaptureFile(std::FILE* file, std::string name, std::vector<std::uint16_t> ports);

    /// The next datagram, whose payload is valid until the next call; false at the end. Throws RecordingError for a damaged file.
    bool Next(CapturedDatagram& captured);

    CaptureLosses const& Losses() const { return losses_; }

private:
    struct Close {
        void operator()(pcap* handle) const;
    };

    void Open(std::FILE* file);
    bool IsWanted(UdpDatagram const& datagram) const;

    std::string name_;
    std::vector<std::uint16_t> ports_;
    std::unique_ptr<pcap, Close> handle_;
    LinkLayer link_{};
    std::uint64_t packets_ = 0;
    CaptureLosses losses_;
};

} // namespace harvlink::recording
