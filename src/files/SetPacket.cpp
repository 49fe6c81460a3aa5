#include "files/SetPacket.h"

#include <algorithm>

namespace harvlink {
namespace {

template <typename Packet>
void SetHeader(Packet& packet, FileServices service, std::size_t payloadSize) {
    packet.header.division = Division::FileControl;
    packet.header.payloadSize = static_cast<std::uint16_t>(payloadSize);
    packet.subHeader = SubHeaderForSending(service);
}

} // namespace

FileRequest SetPacket(FileServices service, std::string_view name) {
    FileRequest packet;
    std::string_view const sent = name.substr(0, FileNameSize);
    SetHeader(packet, service, sent.size());
    std::ranges::copy(sent, packet.payload.begin());
    return packet;
}

FileBlock SetPacket(FileServices service, std::array<char, FileBlockSize> const& contents) {
    FileBlock packet;
    SetHeader(packet, service, contents.size());
    packet.payload = contents;
    return packet;
}

std::string_view TextOf(std::array<char, FileBlockSize> const& block) {
    std::string_view const text(block.data(), block.size());
    return text.substr(0, text.find('\0'));
}

} // namespace harvlink
