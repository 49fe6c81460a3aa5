#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>

#include "simulator/protocol/Refusal.h"
#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

/// A reply under construction. The object is reused, so its buffer holds old bytes; a handler sets everything that it
/// sends. After Begin a reply is a success without payload.
class Reply {
public:
    /// The largest payload in either direction.
    static constexpr std::size_t MaxPayload = FileBlockSize;

    /// Starts the answer to `request`: same id, division and block number, success, no payload.
    void Begin(Request const& request);

    /// Makes the reply a refusal with this code and without payload.
    void Refuse(Refusal code);

    /// Refuses unless the code is `None`. Returns whether the request was refused.
    bool RefuseIf(Refusal code) {
        if (code != Refusal::None) {
            Refuse(code);
        }
        return code != Refusal::None;
    }

    /// Sets the payload to the memory of `record`.
    template <typename Record>
    void Set(Record const& record) {
        static_assert(std::is_trivially_copyable_v<Record> && sizeof(Record) <= MaxPayload);
        std::memcpy(Payload().data(), &record, sizeof(Record));
        SetPayloadSize(sizeof(Record));
    }

    /// Sets the payload to a copy of `bytes`, cut at `MaxPayload`.
    void SetBytes(std::span<std::byte const> bytes);

    /// The whole payload buffer, to be filled in place. Call SetPayloadSize afterwards.
    std::span<std::byte, MaxPayload> Payload() { return std::span(datagram_).subspan<HeaderSize, MaxPayload>(); }
    void SetPayloadSize(std::size_t size);

    void SetBlockNumber(std::uint32_t number);

    /// Makes it a whole datagram that a controller once sent, with the number of this request. It has at least a header, and at
    /// most MaxPayload more.
    void SetDatagram(std::span<std::byte const> datagram, Request const& request);

    /// Sends no reply, as after the last acknowledgement of a file transfer.
    void Suppress() { suppressed_ = true; }

    bool IsSuppressed() const { return suppressed_; }
    bool IsRefused() const { return code_ != Refusal::None; }
    Refusal Code() const { return code_; }

    /// The complete datagram.
    std::span<std::byte const> Bytes() const { return std::span(datagram_).first(HeaderSize + payloadSize_); }

private:
    void WriteSubHeader(std::uint8_t status, Refusal code);

    std::array<std::byte, HeaderSize + MaxPayload> datagram_{};
    std::size_t payloadSize_ = 0;
    std::uint8_t service_ = 0;
    Refusal code_ = Refusal::None;
    bool suppressed_ = false;
};

} // namespace harvlink::simulator
