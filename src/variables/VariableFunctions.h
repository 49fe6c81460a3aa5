#pragma once

#include <cstdint>
#include <iomanip>
#include <optional>
#include <ostream>

#include "harvlink/StatusInfo.h"
#include "wire/NetworkManager.h"

/// The request core that all kinds of variables share; registers are written by it too.
namespace harvlink::VariableFunctions {

inline constexpr unsigned MaxIndex = 2048;

namespace Detail {

/// Positions are read and written as whole records, everything else as a single value.
constexpr bool IsPosition(CommandNumber command) {
    return command == CommandNumber::RobotPositionVariable || command == CommandNumber::BasePositionVariable ||
           command == CommandNumber::StationPositionVariable;
}

constexpr SubHeaderForSending ReadHeader(CommandNumber command, std::uint16_t instance) {
    return IsPosition(command) ? SubHeaderForSending(command, instance, FixedField::WholeRecord, ServiceReadAll)
                               : SubHeaderForSending(command, instance, FixedField::FirstAttribute, ServiceReadOne);
}

constexpr SubHeaderForSending WriteHeader(CommandNumber command, std::uint16_t instance) {
    return IsPosition(command) ? SubHeaderForSending(command, instance, FixedField::WholeRecord, ServiceWriteAll)
                               : SubHeaderForSending(command, instance, FixedField::FirstAttribute, ServiceWriteOne);
}

/// Parameter RS022 at 0 has the controller count variables from 1.
constexpr std::uint16_t InstanceOf(unsigned short index, int rs22State) {
    return static_cast<std::uint16_t>(rs22State == 0 ? index + 1 : index);
}

inline StatusInfo InvalidIndex() {
    return StatusInformation(ErrorStatusCodes::InvalidVariableIndex, "The requested variable index is invalid.");
}

/// The controller's "Instance value is invalid" means here that the variable does not exist.
inline void TranslateInstanceError(StatusInfo& status) {
    constexpr int invalidInstance = 40961;
    if (status.StatusCode == invalidInstance) {
        status = InvalidIndex();
    }
}

} // namespace Detail

/// Reads a value. The payload is cleared if nothing was sent.
template <typename Value>
IncomingPacket<Value> GetVariable(unsigned short index, CommandNumber command, StatusInfo& status,
                                  NetworkManager* networkManager, int rs22State) {
    IncomingPacket<Value> incoming;
    if (index > MaxIndex) {
        status = Detail::InvalidIndex();
        return incoming;
    }
    OutgoingPacket<NoPayload> outgoing;
    outgoing.subHeader = Detail::ReadHeader(command, Detail::InstanceOf(index, rs22State));
    status = networkManager->SendAndReceive(outgoing, incoming, std::nullopt, true);
    Detail::TranslateInstanceError(status);
    return incoming;
}

/// Writes a value, of which `payloadSize` bytes are sent if given and all of them otherwise.
template <typename Value>
StatusInfo SetVariable(unsigned short index, CommandNumber command, Value value, NetworkManager* networkManager,
                       int rs22State, std::optional<unsigned short> payloadSize = std::nullopt) {
    if (index > MaxIndex) {
        return Detail::InvalidIndex();
    }
    OutgoingPacket<Value> outgoing;
    outgoing.header.payloadSize = payloadSize.value_or(sizeof(Value));
    outgoing.subHeader = Detail::WriteHeader(command, Detail::InstanceOf(index, rs22State));
    outgoing.payload = value;
    IncomingPacket<std::uint8_t> incoming;
    StatusInfo status = networkManager->SendAndReceive(outgoing, incoming, std::nullopt, true);
    Detail::TranslateInstanceError(status);
    return status;
}

/// Writes "B005=value". The fill character stays '0' on the stream. A position begins a new line instead of "=".
template <typename Value>
std::ostream& VarOut(std::ostream& stream, char letter, unsigned short index, Value const& value) {
    return stream << letter << std::setw(3) << std::setfill('0') << index << (letter == 'P' ? ":\n" : "=") << value;
}

} // namespace harvlink::VariableFunctions
