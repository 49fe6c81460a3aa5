#include "simulator/protocol/Reply.h"

#include <algorithm>

namespace harvlink::simulator {

namespace {

/// The status byte of a reply: the kind of refusal. The added status has the details.
std::uint8_t StatusByte(Refusal code) {
    switch (code) {
    case Refusal::None:
        return 0;
    case Refusal::UndefinedCommand:
        return 8;
    case Refusal::InvalidAttribute:
        return 9;
    case Refusal::InvalidInstance:
        return 40;
    default:
        return 31;
    }
}

} // namespace

void Reply::Begin(Request const& request) {
    CommonHeader header;
    header.division = request.header.division;
    header.ack = 1;
    header.requestId = request.header.requestId;
    header.blockNumber = request.header.blockNumber;
    std::memcpy(datagram_.data(), &header, sizeof(header));
    payloadSize_ = 0;
    suppressed_ = false;
    code_ = Refusal::None;
    service_ = static_cast<std::uint8_t>(request.subHeader.service | 0x80U);
    WriteSubHeader(0, Refusal::None);
}

void Reply::Refuse(Refusal code) {
    code_ = code;
    SetPayloadSize(0);
    WriteSubHeader(StatusByte(code), code);
}

void Reply::SetBytes(std::span<std::byte const> bytes) {
    auto const size = std::min(bytes.size(), MaxPayload);
    std::copy_n(bytes.begin(), size, Payload().begin());
    SetPayloadSize(size);
}

void Reply::SetPayloadSize(std::size_t size) {
    payloadSize_ = std::min(size, MaxPayload);
    auto const field = static_cast<std::uint16_t>(payloadSize_);
    std::memcpy(datagram_.data() + offsetof(CommonHeader, payloadSize), &field, sizeof(field));
}

void Reply::SetBlockNumber(std::uint32_t number) {
    std::memcpy(datagram_.data() + offsetof(CommonHeader, blockNumber), &number, sizeof(number));
}

void Reply::SetDatagram(std::span<std::byte const> datagram, Request const& request) {
    auto const size = std::min(datagram.size(), datagram_.size());
    std::copy_n(datagram.begin(), size, datagram_.begin());
    datagram_[offsetof(CommonHeader, requestId)] = std::byte{request.header.requestId};
    payloadSize_ = size - std::min(size, HeaderSize);
    SubHeaderForReceiving subHeader;
    std::memcpy(&subHeader, datagram_.data() + sizeof(CommonHeader), sizeof(subHeader));
    code_ = subHeader.status == 0 ? Refusal::None : static_cast<Refusal>(subHeader.addedStatus);
    suppressed_ = false;
}

void Reply::WriteSubHeader(std::uint8_t status, Refusal code) {
    SubHeaderForReceiving subHeader;
    subHeader.service = service_;
    subHeader.status = status;
    subHeader.addedStatusSize = code == Refusal::None ? 0 : 2;
    subHeader.addedStatus = static_cast<std::uint16_t>(code);
    std::memcpy(datagram_.data() + sizeof(CommonHeader), &subHeader, sizeof(subHeader));
}

} // namespace harvlink::simulator
