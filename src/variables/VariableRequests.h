#pragma once

#include <algorithm>
#include <array>

#include "harvlink/VariablesInterface.h"
#include "position/PositionMessages.h"
#include "wire/Request.h"

namespace harvlink {

inline constexpr unsigned MaxVariableIndex = 2048;

/// Code and text of a variable that does not exist, whether the library or the controller finds out.
StatusInfo InvalidVariableIndex();

/// The controller's "Instance value is invalid" means here that the variable does not exist.
void TranslateInstanceError(StatusInfo& status);

/// The instance of a variable. With parameter RS022 at 0 the controller counts variables from 1.
constexpr std::uint16_t VariableInstance(unsigned short index, int rs22State) {
    return static_cast<std::uint16_t>(rs22State == 0 ? index + 1 : index);
}

/// Positions are read and written as whole records, everything else as a single value.
constexpr bool IsPositionVariable(CommandNumber command) {
    return command == CommandNumber::RobotPositionVariable || command == CommandNumber::BasePositionVariable ||
           command == CommandNumber::StationPositionVariable;
}

/// The read of a variable whose value is `Value` on the wire. The index must not be above MaxVariableIndex.
template <typename Value>
struct VariableRead {
    using Reply = Value;
    CommandNumber command;
    unsigned short index;
    std::uint16_t instance;
    Service service;

    constexpr VariableRead(CommandNumber kind, unsigned short variableIndex, int rs22State)
        : command(kind),
          index(variableIndex),
          instance(VariableInstance(variableIndex, rs22State)),
          service(IsPositionVariable(kind) ? Service::ReadAll : Service::ReadOne) {}
};

/// The write of a variable. The same rules as for VariableRead.
template <typename Value>
struct VariableWrite {
    using Reply = std::uint8_t;
    CommandNumber command;
    unsigned short index;
    std::uint16_t instance;
    Service service;
    Value payload;
    std::uint16_t payloadSize = sizeof(Value);

    constexpr VariableWrite(CommandNumber kind, unsigned short variableIndex, int rs22State, Value const& value)
        : command(kind),
          index(variableIndex),
          instance(VariableInstance(variableIndex, rs22State)),
          service(IsPositionVariable(kind) ? Service::WriteAll : Service::WriteOne),
          payload(value) {}

    static StatusInfo Decode(StatusInfo status) {
        TranslateInstanceError(status);
        return status;
    }
};

template <typename Value>
struct ScalarRead : VariableRead<Value> {
    using VariableRead<Value>::VariableRead;

    StatusInfo Decode(StatusInfo status, IncomingPacket<Value> const& reply,
                      ScalarVariableData<Value>& variable) const {
        TranslateInstanceError(status);
        variable = {status.StatusCode == 0 ? reply.payload : Value{}, this->index};
        return status;
    }
};

using VariableText = std::array<char, 32>;

struct StringRead : VariableRead<VariableText> {
    static constexpr std::size_t minimumReply = 0; ///< the text alone, however long

    using VariableRead::VariableRead;

    StatusInfo Decode(StatusInfo status, IncomingPacket<Reply> const& reply, StringVariableData& variable) const;
};

/// A text that is longer than a variable is cut; the message of the success says so.
struct StringWrite : VariableWrite<VariableText> {
    bool isTruncated;

    StringWrite(CommandNumber kind, StringVariableData const& variable, int rs22State);
    StatusInfo Decode(StatusInfo status) const;
};

struct RobotPositionVariableRead : VariableRead<RobotPositionMsg> {
    using VariableRead::VariableRead;

    StatusInfo Decode(StatusInfo status, IncomingPacket<Reply> const& reply, RobotPositionVariableData& variable) const;
};

/// The index of a successful read is 0, on purpose, unlike that of a robot position.
struct BasePositionVariableRead : VariableRead<BasePositionVariableMsg> {
    using VariableRead::VariableRead;

    StatusInfo Decode(StatusInfo status, IncomingPacket<Reply> const& reply,
                      BaseAxisPositionVariableData& variable) const;
};

/// The index of a successful read is 0 here too.
struct StationPositionVariableRead : VariableRead<StationPositionVariableMsg> {
    using VariableRead::VariableRead;

    StatusInfo Decode(StatusInfo status, IncomingPacket<Reply> const& reply,
                      StationPositionVariableData& variable) const;
};

/// The write of a record to the variable that it names.
/// @{
template <typename Value>
VariableWrite<Value> WriteRequest(CommandNumber kind, ScalarVariableData<Value> const& variable, int rs22State) {
    return {kind, variable.variableIndex, rs22State, variable.value};
}
inline StringWrite WriteRequest(CommandNumber kind, StringVariableData const& variable, int rs22State) {
    return {kind, variable, rs22State};
}
VariableWrite<RobotPositionMsg> WriteRequest(CommandNumber kind, RobotPositionVariableData const& variable,
                                             int rs22State);
VariableWrite<BasePositionVariableMsg> WriteRequest(CommandNumber kind, BaseAxisPositionVariableData const& variable,
                                                    int rs22State);
VariableWrite<StationPositionVariableMsg> WriteRequest(CommandNumber kind, StationPositionVariableData const& variable,
                                                       int rs22State);
/// @}

/// The checks of a robot position before it is written.
StatusInfo CheckRobotPositionWrite(PositionData const& position, int numberOfToolFiles);

} // namespace harvlink
