#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <type_traits>
#include <utility>

#include "harvlink/StatusInfo.h"
#include "wire/Packets.h"

/// @file
/// A request is a value: a type that knows its command, instance, service, payload, the record that answers it, and how
/// that answer becomes the public record and its status. It holds no lock and no socket and allocates nothing but what a
/// public record or a text needs, so anything that moves datagrams can carry it out.

namespace harvlink {

/// What every request has. A member `payload` is sent as it stands in memory; `payloadSize` cuts it shorter.
template <typename T>
concept Request = requires(T const& request) {
    typename T::Reply;
    { request.command } -> std::convertible_to<CommandNumber>;
    { request.instance } -> std::convertible_to<std::uint16_t>;
    { request.service } -> std::convertible_to<Service>;
};

/// Not constrained: requests name it while they are not complete yet.
template <typename R>
using ReplyTo = IncomingPacket<typename R::Reply>;

/// The least payload of a reply that is looked at. A request whose replies may be shorter than their record by design says
/// so by a member of this name.
template <typename R>
constexpr std::size_t MinimumReply() {
    if constexpr (requires { R::minimumReply; }) {
        return R::minimumReply;
    } else {
        return sizeof(typename R::Reply);
    }
}

/// A request whose reply is turned into an `Out`. Its `Decode` gets the status of the exchange and the reply, whatever the
/// status, and returns the status that the caller sees. It decides what the output holds after a failure.
template <typename R, typename Out>
concept RequestFor = Request<R> && requires(R const& request, ReplyTo<R> const& reply, StatusInfo status, Out& out) {
    { request.Decode(std::move(status), reply, out) } -> std::same_as<StatusInfo>;
};

/// The datagram of a request, its id not yet set.
template <Request R>
constexpr auto PacketOf(R const& request) {
    if constexpr (requires { request.payload; }) {
        OutgoingPacket<std::remove_cv_t<decltype(request.payload)>> packet;
        packet.payload = request.payload;
        packet.header.payloadSize = sizeof(request.payload);
        if constexpr (requires { request.payloadSize; }) {
            packet.header.payloadSize = request.payloadSize;
        }
        packet.subHeader = {request.command, request.instance, request.service};
        return packet;
    } else {
        OutgoingPacket<NoPayload> packet;
        packet.subHeader = {request.command, request.instance, request.service};
        return packet;
    }
}

/// Sends a request, waits for its reply and turns that into the public record.
template <typename Engine, typename R, typename Out>
requires RequestFor<R, Out> StatusInfo CarryOut(Engine& engine, R const& request, Out& out) {
    auto outgoing = PacketOf(request);
    ReplyTo<R> incoming;
    StatusInfo status = engine.Exchange(outgoing.View(), incoming.View(MinimumReply<R>()), std::nullopt, true);
    return request.Decode(std::move(status), incoming, out);
}

/// The same for a request whose reply is not looked at. A `Decode` of the status alone gives it the text of its subsystem.
template <typename Engine, Request R>
StatusInfo CarryOut(Engine& engine, R const& request) {
    auto outgoing = PacketOf(request);
    ReplyTo<R> incoming;
    StatusInfo status = engine.Exchange(outgoing.View(), incoming.View(), std::nullopt, true);
    if constexpr (requires { request.Decode(std::move(status)); }) {
        // cppcheck-suppress accessMoved // the condition above is not executed
        return request.Decode(std::move(status));
    } else {
        return status;
    }
}

/// A read of several exchanges, a step at a time: `Next` gives the request to send now, or nothing when all is done;
/// `Take` consumes what became of it; `Result` is the status of the whole. Between the two calls it only waits, so one
/// thread can have many of them under way.
template <typename T>
concept RequestSequence = requires(T& sequence, StatusInfo status) {
    { sequence.Next().has_value() } -> std::same_as<bool>;
    requires Request<typename decltype(sequence.Next())::value_type>;
    sequence.Take(std::move(status), ReplyTo<typename decltype(sequence.Next())::value_type>{});
    { sequence.Result() } -> std::convertible_to<StatusInfo>;
};

/// Runs a sequence to its end.
template <typename Engine, RequestSequence Sequence>
StatusInfo CarryOutAll(Engine& engine, Sequence& sequence) {
    while (auto const request = sequence.Next()) {
        auto outgoing = PacketOf(*request);
        using Step = typename decltype(sequence.Next())::value_type;
        ReplyTo<Step> incoming;
        StatusInfo status = engine.Exchange(outgoing.View(), incoming.View(MinimumReply<Step>()), std::nullopt, true);
        sequence.Take(std::move(status), incoming);
    }
    return sequence.Result();
}

} // namespace harvlink
