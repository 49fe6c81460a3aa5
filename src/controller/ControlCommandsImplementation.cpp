#include "controller/ControlCommandsImplementation.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "controller/StatusMessages.h"

namespace harvlink {
namespace {

constexpr std::uint16_t holdInstance = 1;
constexpr std::uint16_t servoInstance = 2;
constexpr std::uint16_t cycleModeInstance = 2;
constexpr std::uint32_t remoteModeBit = 1U << 7U;

} // namespace

template <typename In, typename Out>
StatusInfo ControlCommandsImplementation::Command(CommandNumber command, unsigned short instance, Out const& value) {
    StatusInfo status;
    networkManager->RecordRequest<In>(value, instance, command, status, FixedField::FirstAttribute, ServiceWriteOne);
    return status;
}

StatusInfo ControlCommandsImplementation::SetServos(SignalStatus state) {
    networkManager->IncreaseTimeout();
    StatusInfo result = Command<std::uint32_t>(CommandNumber::HoldOrServo, servoInstance, state);
    networkManager->ResetTimeout();

    // A fixed part of the exchange: the answer is not used.
    CheckExternalMode();
    if (result.StatusCode != 0 && !CheckExternalMode()) {
        result.Message = "Unable to turn on servos. Remote Mode is not selected.";
    }
    return result;
}

StatusInfo ControlCommandsImplementation::SetHold(SignalStatus state) {
    return Command<std::uint32_t>(CommandNumber::HoldOrServo, holdInstance, state);
}

StatusInfo ControlCommandsImplementation::SetCycleMode(CycleMode mode) {
    // The controller counts the modes from 1.
    return Command<std::uint32_t>(CommandNumber::CycleModeSwitch, cycleModeInstance,
                                  static_cast<std::uint32_t>(mode) + 1);
}

StatusInfo ControlCommandsImplementation::DisplayStringToPendant(std::string const& text) {
    OutgoingPacket<std::array<char, 30>> outgoing;
    // Only the low 16 bits of the length count, on purpose: a text of 65540 characters goes out as its first 4.
    auto const length = std::min<std::uint16_t>(static_cast<std::uint16_t>(text.size()),
                                                static_cast<std::uint16_t>(outgoing.payload.size()));
    outgoing.header.payloadSize = length;
    outgoing.subHeader = {CommandNumber::PendantMessage, 1, FixedField::FirstAttribute, ServiceWriteOne};
    std::copy_n(text.begin(), length, outgoing.payload.begin());
    IncomingPacket<std::uint32_t> incoming;
    return networkManager->SendAndReceive(outgoing, incoming, std::nullopt, true);
}

StatusInfo ControlCommandsImplementation::StartJob() {
    return Command<std::uint8_t>(CommandNumber::JobStart, 1, std::uint32_t{1});
}

bool ControlCommandsImplementation::CheckExternalMode() {
    StatusInfo ignored;
    auto const reply = networkManager->SimpleRequest<CheckControlModeReturnData>(
        1, CommandNumber::StatusRead, ignored, FixedField::FirstAttribute, ServiceReadOne);
    return (reply.payload.first & remoteModeBit) != 0;
}

} // namespace harvlink
