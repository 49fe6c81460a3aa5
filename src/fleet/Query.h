#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <span>
#include <type_traits>

#include "controller/AlarmRequests.h"
#include "fleet/ControllerFacts.h"
#include "fleet/Item.h"
#include "variables/VariableRequests.h"
#include "wire/OnlyReads.h"
#include "wire/Request.h"

namespace harvlink::fleet {

/// Whether a type of request can only read. Those that carry their command and service in the type are looked up in the
/// table; of the others only those that are named here.
template <typename R>
inline constexpr bool IsRead = false;
template <typename R>
requires requires {
    std::bool_constant<OnlyReads(Division::RobotControl, R::command, std::uint8_t(R::service))>{};
}
inline constexpr bool IsRead<R> = OnlyReads(Division::RobotControl, R::command, static_cast<std::uint8_t>(R::service));
template <>
inline constexpr bool IsRead<AlarmRequest> = true;
template <typename R>
requires std::derived_from<R, VariableRead<typename R::Reply>>
inline constexpr bool IsRead<R> = true;

template <typename R>
concept ReadRequest = Request<R> && IsRead<R>;

/// A request that only reads, as the bytes that differ from one to the other.
struct Query {
    static constexpr std::size_t roomForPayload = 16;

    SubHeaderForSending subHeader;
    std::array<std::byte, roomForPayload> payload{};
    std::uint16_t payloadSize = 0;
    std::uint16_t minimumReply = 0; ///< see MinimumReply

    /// Whether one datagram answers both.
    bool operator==(Query const& other) const {
        return std::memcmp(&subHeader, &other.subHeader, sizeof(subHeader)) == 0 && payload == other.payload;
    }
};

template <ReadRequest R>
Query QueryOf(R const& request) {
    Query query;
    auto packet = PacketOf(request);
    static_assert(sizeof(packet.payload) <= Query::roomForPayload);
    query.subHeader = packet.subHeader;
    query.payloadSize = packet.header.payloadSize;
    std::memcpy(query.payload.data(), packet.Bytes().data() + HeaderSize, query.payloadSize);
    query.minimumReply = static_cast<std::uint16_t>(MinimumReply<R>());
    return query;
}

/// The query for exchange number `part` of an item.
Query QueryFor(Item const& item, unsigned part, ControllerFacts const& facts);

} // namespace harvlink::fleet
