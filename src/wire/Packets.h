#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

#include "wire/CommandNumber.h"

/// @file
/// The datagrams, as records whose memory is the datagram. All members lie on their natural boundaries, so there are no
/// gaps; the asserts check that.

namespace harvlink {

static_assert(std::endian::native == std::endian::little,
              "the records are little-endian on the wire and are not swapped");

enum class Division : std::uint8_t { RobotControl = 1, FileControl = 2 };

/// Set in the number of the block that ends a file.
inline constexpr std::uint32_t LastBlockFlag = 0x80000000;

/// Bytes 0 to 23 of every datagram, both ways.
struct CommonHeader {
    std::array<char, 4> magic{'T', 'R', 'O', 'Z'};
    std::uint16_t headerSize = 32;
    std::uint16_t payloadSize = 0;
    std::uint8_t reserved = 3;
    Division division = Division::RobotControl;
    std::uint8_t ack = 0; ///< 1 in what the client sends after the opening request of a file transfer
    std::uint8_t requestId = 0;
    std::uint32_t blockNumber = 0;
    std::array<char, 8> filler{'9', '9', '9', '9', '9', '9', '9', '9'};
};
static_assert(sizeof(CommonHeader) == 24);
static_assert(offsetof(CommonHeader, headerSize) == 4);
static_assert(offsetof(CommonHeader, payloadSize) == 6);
static_assert(offsetof(CommonHeader, reserved) == 8);
static_assert(offsetof(CommonHeader, division) == 9);
static_assert(offsetof(CommonHeader, ack) == 10);
static_assert(offsetof(CommonHeader, requestId) == 11);
static_assert(offsetof(CommonHeader, blockNumber) == 12);
static_assert(offsetof(CommonHeader, filler) == 16);

/// Bytes 24 to 31 of a request. On the file division only the service is used.
struct SubHeaderForSending {
    std::uint16_t command = 0;
    std::uint16_t instance = 0;
    std::uint8_t attribute = 0;
    std::uint8_t service = 0;
    std::uint16_t padding = 0;

    constexpr SubHeaderForSending() = default;
    constexpr SubHeaderForSending(CommandNumber commandNumber, std::uint16_t itemInstance, FixedField field,
                                  std::uint8_t serviceCode)
        : command(static_cast<std::uint16_t>(commandNumber)),
          instance(itemInstance),
          attribute(static_cast<std::uint8_t>(field)),
          service(serviceCode) {}
    constexpr SubHeaderForSending(CommandNumber commandNumber, std::uint16_t itemInstance, Service commandService)
        : SubHeaderForSending(commandNumber, itemInstance, FieldOf(commandService),
                              static_cast<std::uint8_t>(commandService)) {}
    constexpr explicit SubHeaderForSending(FileServices fileService)
        : service(static_cast<std::uint8_t>(fileService)) {}
};
static_assert(sizeof(SubHeaderForSending) == 8);
static_assert(offsetof(SubHeaderForSending, instance) == 2);
static_assert(offsetof(SubHeaderForSending, attribute) == 4);
static_assert(offsetof(SubHeaderForSending, service) == 5);
static_assert(offsetof(SubHeaderForSending, padding) == 6);

/// Bytes 24 to 31 of a reply.
struct SubHeaderForReceiving {
    std::uint8_t service = 0;
    std::uint8_t status = 0; ///< 0 when the command succeeded
    std::uint8_t addedStatusSize = 0;
    std::uint8_t padding = 0;
    std::uint16_t addedStatus = 0; ///< the controller's detailed error code
    std::uint16_t padding2 = 0;
};
static_assert(sizeof(SubHeaderForReceiving) == 8);
static_assert(offsetof(SubHeaderForReceiving, status) == 1);
static_assert(offsetof(SubHeaderForReceiving, addedStatusSize) == 2);
static_assert(offsetof(SubHeaderForReceiving, padding) == 3);
static_assert(offsetof(SubHeaderForReceiving, addedStatus) == 4);
static_assert(offsetof(SubHeaderForReceiving, padding2) == 6);

inline constexpr std::size_t HeaderSize = sizeof(CommonHeader) + sizeof(SubHeaderForSending);
inline constexpr std::size_t FileBlockSize = 479;
inline constexpr std::size_t FileNameSize = 32;

/// Stands as payload in a request that has none. It is never sent.
using NoPayload = std::uint32_t;

/// A packet as the exchange sees it, whatever its payload.
struct OutgoingView {
    CommonHeader& header;
    std::span<std::byte> bytes; ///< the whole datagram, header included
};
struct IncomingView {
    CommonHeader& header;
    SubHeaderForReceiving& subHeader;
    std::span<std::byte> bytes; ///< the whole datagram, header included
    std::size_t minimumPayload =
        0; ///< of a successful answer; 0 where it may be short by design. See Rule::WholeAnswer
};

template <typename Payload>
struct OutgoingPacket {
    static_assert(std::is_trivially_copyable_v<Payload>);

    CommonHeader header{};
    SubHeaderForSending subHeader{};
    Payload payload{};

    std::span<std::byte> Bytes() { return std::as_writable_bytes(std::span(this, 1)); }
    OutgoingView View() { return {header, Bytes()}; }
};

/// Constructed as the image of a request without payload and with a zero sub-header, so that a reply that never arrives
/// leaves a well-formed zero result.
template <typename Payload>
struct IncomingPacket {
    static_assert(std::is_trivially_copyable_v<Payload>);

    CommonHeader header{};
    SubHeaderForReceiving subHeader{};
    Payload payload{};

    std::span<std::byte> Bytes() { return std::as_writable_bytes(std::span(this, 1)); }
    IncomingView View(std::size_t minimumPayload = 0) { return {header, subHeader, Bytes(), minimumPayload}; }
};

static_assert(offsetof(OutgoingPacket<NoPayload>, payload) == HeaderSize);
static_assert(offsetof(IncomingPacket<NoPayload>, payload) == HeaderSize);
static_assert(sizeof(IncomingPacket<std::uint8_t>) == 36);
static_assert(sizeof(IncomingPacket<std::array<char, FileBlockSize>>) == 512);

} // namespace harvlink
