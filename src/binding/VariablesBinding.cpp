#include "binding/Binding.h"

using namespace harvlink::InteropHelper;
using harvlink::Binding::As;
using harvlink::Binding::ControllerOf;
using harvlink::Binding::Guarded;
using harvlink::Binding::ReturnedTexts;

namespace {

harvlink::VariablesInterface& VariablesOf(ControllerHandle handle) {
    return *ControllerOf(handle).Variables;
}

template <typename Record, typename Plain>
IStatusInfo ReadVariable(harvlink::VariableInterface<Record>* variables, unsigned short index, Plain* variable) {
    return ToPlain(variables->Read(index, As<Record>(variable)));
}

template <typename Record, typename Plain>
IStatusInfo WriteVariable(harvlink::VariableInterface<Record>* variables, Plain const* variable) {
    return ToPlain(variables->Write(As<Record>(variable)));
}

} // namespace

inline namespace harvlink_c {

IStatusInfo byte_variable_interface_read(ControllerHandle handle, unsigned short index, ByteVariableData* variable) {
    return ReadVariable(VariablesOf(handle).byteVariable, index, variable);
}

IStatusInfo byte_variable_interface_write(ControllerHandle handle, ByteVariableData variable) {
    return WriteVariable(VariablesOf(handle).byteVariable, &variable);
}

IStatusInfo integer_variable_interface_read(ControllerHandle handle, unsigned short index,
                                            IntegerVariableData* variable) {
    return ReadVariable(VariablesOf(handle).integerVariable, index, variable);
}

IStatusInfo integer_variable_interface_write(ControllerHandle handle, IntegerVariableData variable) {
    return WriteVariable(VariablesOf(handle).integerVariable, &variable);
}

IStatusInfo double_int_variable_interface_read(ControllerHandle handle, unsigned short index,
                                               DoubleIntVariableData* variable) {
    return ReadVariable(VariablesOf(handle).doubleIntVariable, index, variable);
}

IStatusInfo double_int_variable_interface_write(ControllerHandle handle, DoubleIntVariableData variable) {
    return WriteVariable(VariablesOf(handle).doubleIntVariable, &variable);
}

IStatusInfo real_variable_interface_read(ControllerHandle handle, unsigned short index, RealVariableData* variable) {
    return ReadVariable(VariablesOf(handle).realVariable, index, variable);
}

IStatusInfo real_variable_interface_write(ControllerHandle handle, RealVariableData variable) {
    return WriteVariable(VariablesOf(handle).realVariable, &variable);
}

IStatusInfo string_variable_interface_read(ControllerHandle handle, unsigned short index,
                                           IStringVariableData* variable) {
    harvlink::StringVariableData read;
    harvlink::StatusInfo const status = VariablesOf(handle).stringVariable->Read(index, read);
    ReturnedTexts texts(handle);
    *variable = {texts.Copy(read.value), read.variableIndex};
    return texts.Checked(ToPlain(status));
}

IStatusInfo string_variable_interface_write(ControllerHandle handle, IStringVariableData const* variable) {
    return Guarded(handle, [&] {
        return VariablesOf(handle).stringVariable->Write(
            {ConvertChar8ToString(variable->value), variable->variableIndex});
    });
}

IStatusInfo robot_position_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                   RobotPositionVariableData* variable) {
    return ReadVariable(VariablesOf(handle).robotPositionVariable, index, variable);
}

IStatusInfo robot_position_variable_interface_write(ControllerHandle handle,
                                                    RobotPositionVariableData const* variable) {
    return WriteVariable(VariablesOf(handle).robotPositionVariable, variable);
}

IStatusInfo base_position_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                  BaseAxisPositionVariableData* variable) {
    return ReadVariable(VariablesOf(handle).basePositionVariable, index, variable);
}

IStatusInfo base_position_variable_interface_write(ControllerHandle handle,
                                                   BaseAxisPositionVariableData const* variable) {
    return WriteVariable(VariablesOf(handle).basePositionVariable, variable);
}

IStatusInfo station_position_variable_interface_read(ControllerHandle handle, unsigned short index,
                                                     StationPositionVariableData* variable) {
    return ReadVariable(VariablesOf(handle).stationPositionVariable, index, variable);
}

IStatusInfo station_position_variable_interface_write(ControllerHandle handle,
                                                      StationPositionVariableData const* variable) {
    return WriteVariable(VariablesOf(handle).stationPositionVariable, variable);
}

} // namespace harvlink_c
