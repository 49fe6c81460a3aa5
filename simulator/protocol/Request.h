#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>

#include "wire/Packets.h"

namespace harvlink::simulator {

enum class Port : std::uint16_t { Robot = 10040, File = 10041 };

/// A received datagram with a valid header. The payload lies in the receive buffer and is valid until the handler
/// returns.
struct Request {
    Port port = Port::Robot;
    std::uint64_t peer = 0; ///< the client's socket: equal for datagrams of one socket, different for any other
    CommonHeader header{};
    SubHeaderForSending subHeader{};
    std::span<std::byte const> payload;

    /// Takes a datagram apart, whose memory the payload refers to. False if it is not one of this protocol.
    bool Parse(std::span<std::byte const> datagram);

    CommandNumber Command() const { return static_cast<CommandNumber>(subHeader.command); }
    bool IsWrite() const { return subHeader.service == ServiceWriteOne || subHeader.service == ServiceWriteAll; }

    /// The payload as a wire record. A shorter payload leaves the rest of the record zero, a longer one is cut. The
    /// catalogue has already checked that the command may have this size.
    template <typename Record>
    Record As() const {
        static_assert(std::is_trivially_copyable_v<Record>);
        Record record{};
        auto const size = std::min(payload.size(), sizeof(Record));
        if (size > 0) {
            std::memcpy(static_cast<void*>(&record), payload.data(), size);
        }
        return record;
    }
};

} // namespace harvlink::simulator
