#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

bool Request::Parse(std::span<std::byte const> datagram) {
    if (datagram.size() < HeaderSize) {
        return false;
    }
    std::memcpy(&header, datagram.data(), sizeof(header));
    std::memcpy(&subHeader, datagram.data() + sizeof(header), sizeof(subHeader));
    payload = datagram.subspan(HeaderSize);
    CommonHeader const expected;
    return header.magic == expected.magic && header.headerSize == expected.headerSize;
}

} // namespace harvlink::simulator
