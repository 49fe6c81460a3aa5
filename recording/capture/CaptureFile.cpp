#include "recording/capture/CaptureFile.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include <fmt/format.h>
#include <pcap/pcap.h>

#include "recording/capture/CaptureFormat.h"

namespace harvlink::recording {

namespace {

std::optional<LinkLayer> LinkLayerOf(int type) {
    switch (type) {
    case DLT_EN10MB:
        return LinkLayer::Ethernet;
    case DLT_LINUX_SLL:
        return LinkLayer::Cooked;
    case DLT_LINUX_SLL2:
        return LinkLayer::Cooked2;
    case DLT_NULL:
    case DLT_LOOP:
        return LinkLayer::Loopback;
    case DLT_RAW:
    case DLT_IPV4:
        return LinkLayer::RawIp;
    default:
        return std::nullopt;
    }
}

} // namespace

void CaptureFile::Close::operator()(pcap* handle) const {
    pcap_close(handle);
}

CaptureFile::CaptureFile(std::filesystem::path const& path, std::vector<std::uint16_t> ports)
    : CaptureFile(OpenCapture(path), path.string(), std::move(ports)) {}

CaptureFile::CaptureFile(std::FILE* file, std::string name, std::vector<std::uint16_t> ports)
    : name_(std::move(name)), ports_(std::move(ports)) {
    Open(file);
}

void CaptureFile::Open(std::FILE* file) {
    std::array<char, PCAP_ERRBUF_SIZE> problem{};
    handle_.reset(pcap_fopen_offline_with_tstamp_precision(file, PCAP_TSTAMP_PRECISION_MICRO, problem.data()));
    if (!handle_) {
        std::fclose(file);
        throw RecordingError(fmt::format("{}: this is not a capture: {}", name_, problem.data()));
    }
    int const type = pcap_datalink(handle_.get());
    auto const link = LinkLayerOf(type);
    if (!link) {
        char const* const known = pcap_datalink_val_to_name(type);
        throw RecordingError(
            fmt::format("{}: the capture is of the link type {} ({}); those that can be read are Ethernet, "
                        "Linux cooked, loopback and raw IP",
                        name_, type, known == nullptr ? "unknown" : known));
    }
    link_ = *link;
}

bool CaptureFile::IsWanted(UdpDatagram const& datagram) const {
    auto const has = [&](std::uint16_t port) { return std::find(ports_.begin(), ports_.end(), port) != ports_.end(); };
    return has(datagram.fromPort) || has(datagram.toPort);
}

bool CaptureFile::Next(CapturedDatagram& captured) {
    constexpr Microseconds PerSecond = 1'000'000;
    pcap_pkthdr* header = nullptr;
    unsigned char const* bytes = nullptr;
    for (;;) {
        int const result = pcap_next_ex(handle_.get(), &header, &bytes);
        if (result == PCAP_ERROR_BREAK) {
            return false;
        }
        if (result != 1) {
            throw RecordingError(fmt::format("{}: the capture is damaged after {} packets: {}", name_, packets_,
                                             pcap_geterr(handle_.get())));
        }
        ++packets_;
        constexpr Microseconds LatestSecond = 253'402'300'799; // of the year 9999
        if (header->ts.tv_sec < 0 || header->ts.tv_sec > LatestSecond) {
            ++losses_.malformed;
            continue;
        }
        auto const packet = std::as_bytes(std::span(bytes, header->caplen));
        UdpDatagram& datagram = captured.datagram;
        FrameContent const content = ParseFrame(link_, packet, header->len, datagram);
        bool const hasNoPort = datagram.fromPort == 0 && datagram.toPort == 0;
        bool const counts = IsWanted(datagram) || hasNoPort;
        losses_.fragments += content == FrameContent::Fragment ? 1 : 0;
        losses_.cutShort += content == FrameContent::CutShort && counts ? 1 : 0;
        losses_.malformed += content == FrameContent::Malformed && counts ? 1 : 0;
        if (content == FrameContent::Datagram && IsWanted(datagram)) {
            captured.time = Microseconds{header->ts.tv_sec} * PerSecond + header->ts.tv_usec;
            return true;
        }
    }
}

} // namespace harvlink::recording
