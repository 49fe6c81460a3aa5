#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "harvlink/ControlCommandsInterface.h"
#include "wire/Request.h"

namespace harvlink {

/// Hold and servo power share a command.
struct SwitchRequest {
    using Reply = std::uint32_t;
    static constexpr CommandNumber command = CommandNumber::HoldOrServo;
    static constexpr Service service = Service::WriteOne;
    std::uint16_t instance;
    SignalStatus payload;

    static constexpr std::uint16_t hold = 1;
    static constexpr std::uint16_t servos = 2;
};

struct CycleModeRequest {
    using Reply = std::uint32_t;
    static constexpr CommandNumber command = CommandNumber::CycleModeSwitch;
    static constexpr Service service = Service::WriteOne;
    static constexpr std::uint16_t instance = 2;
    std::uint32_t payload;

    /// The controller counts the modes from 1.
    explicit CycleModeRequest(CycleMode mode) : payload(static_cast<std::uint32_t>(mode) + 1) {}
};

struct JobStartRequest {
    using Reply = std::uint8_t;
    static constexpr CommandNumber command = CommandNumber::JobStart;
    static constexpr Service service = Service::WriteOne;
    static constexpr std::uint16_t instance = 1;
    std::uint32_t payload = 1;
};

/// A text on the pendant.
struct PendantMessageRequest {
    using Reply = std::uint32_t;
    static constexpr CommandNumber command = CommandNumber::PendantMessage;
    static constexpr Service service = Service::WriteOne;
    static constexpr std::uint16_t instance = 1;
    std::array<char, 30> payload{};
    std::uint16_t payloadSize;

    /// Only the low 16 bits of the length count, on purpose: a text of 65540 characters goes out as its first 4.
    explicit PendantMessageRequest(std::string_view text)
        : payloadSize(std::min<std::uint16_t>(static_cast<std::uint16_t>(text.size()),
                                              static_cast<std::uint16_t>(payload.size()))) {
        std::copy_n(text.begin(), payloadSize, payload.begin());
    }
};

} // namespace harvlink
