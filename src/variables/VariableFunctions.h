#pragma once

#include <cstdint>
#include <iomanip>
#include <optional>
#include <ostream>

#include "variables/VariableRequests.h"
#include "wire/NetworkManager.h"

/// Variables of any kind by their command; registers are written by it too.
namespace harvlink::VariableFunctions {

/// Reads a value. The payload is cleared if nothing was sent.
template <typename Value>
IncomingPacket<Value> GetVariable(unsigned short index, CommandNumber command, StatusInfo& status,
                                  NetworkManager* networkManager, int rs22State) {
    IncomingPacket<Value> incoming;
    if (index > MaxVariableIndex) {
        status = InvalidVariableIndex();
        return incoming;
    }
    auto outgoing = PacketOf(VariableRead<Value>(command, index, rs22State));
    status = networkManager->Exchange(outgoing.View(), incoming.View(sizeof(Value)), std::nullopt, true);
    TranslateInstanceError(status);
    return incoming;
}

/// Writes a value, of which `payloadSize` bytes are sent if given and all of them otherwise.
template <typename Value>
StatusInfo SetVariable(unsigned short index, CommandNumber command, Value value, NetworkManager* networkManager,
                       int rs22State, std::optional<unsigned short> payloadSize = std::nullopt) {
    if (index > MaxVariableIndex) {
        return InvalidVariableIndex();
    }
    VariableWrite<Value> write(command, index, rs22State, value);
    write.payloadSize = payloadSize.value_or(write.payloadSize);
    return CarryOut(*networkManager, write);
}

/// Writes "B005=value". The fill character stays '0' on the stream. A position begins a new line instead of "=".
template <typename Value>
std::ostream& VarOut(std::ostream& stream, char letter, unsigned short index, Value const& value) {
    return stream << letter << std::setw(3) << std::setfill('0') << index << (letter == 'P' ? ":\n" : "=") << value;
}

} // namespace harvlink::VariableFunctions
