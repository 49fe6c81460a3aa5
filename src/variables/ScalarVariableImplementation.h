#pragma once

#include "harvlink/VariablesInterface.h"
#include "variables/VariableFunctions.h"

namespace harvlink {

/// The numeric kinds differ in command and type only.
template <typename Value, CommandNumber command>
class ScalarVariableImplementation final : public VariableInterface<ScalarVariableData<Value>> {
public:
    ScalarVariableImplementation(NetworkManager* manager, int rs22) : networkManager(manager), rs22State(rs22) {}

    StatusInfo Read(unsigned short index, ScalarVariableData<Value>& variable) override {
        variable = {};
        StatusInfo status;
        auto const reply = VariableFunctions::GetVariable<Value>(index, command, status, networkManager, rs22State);
        variable.variableIndex = index;
        if (status.StatusCode == 0) {
            variable.value = reply.payload;
        }
        return status;
    }

    StatusInfo Write(ScalarVariableData<Value> const& variable) override {
        return VariableFunctions::SetVariable<Value>(variable.variableIndex, command, variable.value, networkManager,
                                                     rs22State);
    }

private:
    NetworkManager* networkManager;
    int rs22State;
};

using ByteVariableImplementation = ScalarVariableImplementation<std::uint8_t, CommandNumber::ByteVariable>;
using IntegerVariableImplementation = ScalarVariableImplementation<std::int16_t, CommandNumber::IntegerVariable>;
using DoubleIntVariableImplementation = ScalarVariableImplementation<std::int32_t, CommandNumber::DoubleIntVariable>;
using RealVariableImplementation = ScalarVariableImplementation<float, CommandNumber::RealVariable>;

} // namespace harvlink
