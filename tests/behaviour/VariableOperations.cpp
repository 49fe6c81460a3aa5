#include "behaviour/Operation.h"

namespace harvlink::test {
namespace {

constexpr unsigned short variableNumber = 7;
std::map<int, int> const invalidIndex{{40961, 0x30008}};

/// Read and write of one kind. The kinds differ in name, command and record.
template <typename Record, typename Plain>
void AddKind(Operations& table, std::string const& kind, unsigned command, Bytes const& value,
             VariableInterface<Record>* VariablesInterface::*variables,
             IStatusInfo (*read)(ControllerHandle, unsigned short, Plain*), auto write) {
    Traits const traits{.codes = invalidIndex, .mayBeShort = std::is_same_v<Record, StringVariableData>};
    Add<Record, Plain>(
        table, {{command, value}}, kind + "_variable_interface_read",
        [=](QuorvanController& c, Record& out) { return (c.Variables->*variables)->Read(variableNumber, out); },
        [=](ControllerHandle h, Plain* out) { return read(h, variableNumber, out); }, traits,
        [](std::size_t) {
            Record failed{};
            failed.variableIndex = variableNumber;
            return failed;
        });
    Add(
        table, {{command}}, kind + "_variable_interface_write",
        [=](QuorvanController& c, NoOutput&) {
            Record written{};
            written.variableIndex = variableNumber;
            if constexpr (std::is_same_v<Record, StringVariableData>) {
                written.value = "text";
            }
            return (c.Variables->*variables)->Write(written);
        },
        [=](ControllerHandle h, NoOutput*) {
            Plain written{};
            written.variableIndex = variableNumber;
            if constexpr (std::is_same_v<Plain, IStringVariableData>) {
                written.value = const_cast<char*>("text");
            }
            if constexpr (std::is_invocable_v<decltype(write), ControllerHandle, Plain>) {
                return write(h, written);
            } else {
                return write(h, &written);
            }
        },
        traits);
}

} // namespace

void AddVariableOperations(Operations& table) {
    using Kinds = VariablesInterface;
    AddKind<ByteVariableData>(table, "byte", 122, Pattern(1), &Kinds::byteVariable, byte_variable_interface_read,
                              byte_variable_interface_write);
    AddKind<IntegerVariableData>(table, "integer", 123, Pattern(2), &Kinds::integerVariable,
                                 integer_variable_interface_read, integer_variable_interface_write);
    AddKind<DoubleIntVariableData>(table, "double_int", 124, Pattern(4), &Kinds::doubleIntVariable,
                                   double_int_variable_interface_read, double_int_variable_interface_write);
    AddKind<RealVariableData>(table, "real", 125, Pattern(4), &Kinds::realVariable, real_variable_interface_read,
                              real_variable_interface_write);
    AddKind<StringVariableData>(table, "string", 140, Pattern(32), &Kinds::stringVariable,
                                string_variable_interface_read, string_variable_interface_write);
    AddKind<RobotPositionVariableData>(
        table, "robot_position", 127, Words({16, 5, 1, 2, 3, 11, 22, 33, 44, 55, 66, 77, 88}),
        &Kinds::robotPositionVariable, robot_position_variable_interface_read, robot_position_variable_interface_write);
    AddKind<BaseAxisPositionVariableData>(table, "base_position", 128, Words({16, 11, 22, 33, 44, 55, 66, 77, 88}),
                                          &Kinds::basePositionVariable, base_position_variable_interface_read,
                                          base_position_variable_interface_write);
    AddKind<StationPositionVariableData>(table, "station_position", 129, Words({0, 11, 22, 33, 44, 55, 66, 77, 88}),
                                         &Kinds::stationPositionVariable, station_position_variable_interface_read,
                                         station_position_variable_interface_write);
}

} // namespace harvlink::test
