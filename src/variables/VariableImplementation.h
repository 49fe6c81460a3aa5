#pragma once

#include "harvlink/VariablesInterface.h"
#include "variables/VariableRequests.h"
#include "wire/Guarded.h"
#include "wire/NetworkManager.h"

namespace harvlink {

/// The variables of one kind; the kinds differ in their requests only.
template <typename Record, CommandNumber command, typename ReadRequest>
class VariableImplementation : public VariableInterface<Record> {
public:
    VariableImplementation(NetworkManager* manager, int rs22) : networkManager(manager), rs22State(rs22) {}

    StatusInfo Read(unsigned short index, Record& variable) override {
        return Guarded(*networkManager, [&] {
            variable = {}; // and its index, which is what a failure leaves
            variable.variableIndex = index;
            return index > MaxVariableIndex
                       ? InvalidVariableIndex()
                       : CarryOut(*networkManager, ReadRequest(command, index, rs22State), variable);
        });
    }

    StatusInfo Write(Record const& variable) override {
        return Guarded(*networkManager, [&] {
            return variable.variableIndex > MaxVariableIndex
                       ? InvalidVariableIndex()
                       : CarryOut(*networkManager, WriteRequest(command, variable, rs22State));
        });
    }

protected:
    NetworkManager& Engine() { return *networkManager; }

private:
    NetworkManager* networkManager;
    int rs22State;
};

template <typename Value, CommandNumber command>
using ScalarVariableImplementation = VariableImplementation<ScalarVariableData<Value>, command, ScalarRead<Value>>;

using ByteVariableImplementation = ScalarVariableImplementation<std::uint8_t, CommandNumber::ByteVariable>;
using IntegerVariableImplementation = ScalarVariableImplementation<std::int16_t, CommandNumber::IntegerVariable>;
using DoubleIntVariableImplementation = ScalarVariableImplementation<std::int32_t, CommandNumber::DoubleIntVariable>;
using RealVariableImplementation = ScalarVariableImplementation<float, CommandNumber::RealVariable>;
using StringVariableImplementation =
    VariableImplementation<StringVariableData, CommandNumber::StringVariable, StringRead>;
using BasePositionVariableImplementation =
    VariableImplementation<BaseAxisPositionVariableData, CommandNumber::BasePositionVariable, BasePositionVariableRead>;
using StationPositionVariableImplementation =
    VariableImplementation<StationPositionVariableData, CommandNumber::StationPositionVariable,
                           StationPositionVariableRead>;

/// The one kind that checks what it writes.
class RobotPositionVariableImplementation final
    : public VariableImplementation<RobotPositionVariableData, CommandNumber::RobotPositionVariable,
                                    RobotPositionVariableRead> {
public:
    RobotPositionVariableImplementation(NetworkManager* manager, int rs22, int toolFiles)
        : VariableImplementation(manager, rs22), numberOfToolFiles(toolFiles) {}

    StatusInfo Write(RobotPositionVariableData const& variable) override {
        StatusInfo status =
            Guarded(this->Engine(), [&] { return CheckRobotPositionWrite(variable.positionData, numberOfToolFiles); });
        return status.StatusCode != 0 ? status : VariableImplementation::Write(variable);
    }

private:
    int numberOfToolFiles;
};

} // namespace harvlink
