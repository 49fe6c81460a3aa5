#include <array>
#include <iostream>

#include "Demo.h"

namespace demo {
namespace {

constexpr unsigned short variableIndex = 5;

/// Writes a variable, reads it back and shows it.
template <typename Record, typename Value>
void Exchange(harvlink::VariableInterface<Record>& variables, Value Record::*field, Value const& value) {
    Record written;
    written.variableIndex = variableIndex;
    written.*field = value;
    Require(variables.Write(written), "write a variable");

    Record read;
    Require(variables.Read(variableIndex, read), "read a variable");
    Require(read.*field == value, "a variable is not what was written");
    std::cout << read << '\n';
}

template <typename Record>
void ExchangePosition(harvlink::VariableInterface<Record>& variables, harvlink::CoordinateType type,
                      std::array<double, 8> const& axes) {
    Record written;
    written.variableIndex = variableIndex;
    written.positionData.coordinateType = type;
    written.positionData.axes = axes;
    Require(variables.Write(written), "write a position variable");

    Record read;
    Require(variables.Read(variableIndex, read), "read a position variable");
    Require(read.positionData.axes == axes, "a position variable differs from the value that was written");
    // A read of base and station variables does not set their number.
    read.variableIndex = variableIndex;
    std::cout << read << '\n';
}

} // namespace

void ExchangeVariables(harvlink::QuorvanController& robot) {
    using harvlink::CoordinateType;
    Title("Variables");
    auto const& variables = *robot.Variables;
    Exchange(*variables.byteVariable, &harvlink::ByteVariableData::value, std::uint8_t{200});
    Exchange(*variables.integerVariable, &harvlink::IntegerVariableData::value, std::int16_t{-12345});
    Exchange(*variables.doubleIntVariable, &harvlink::DoubleIntVariableData::value, 1234567);
    Exchange(*variables.realVariable, &harvlink::RealVariableData::value, 3.25F);
    Exchange(*variables.stringVariable, &harvlink::StringVariableData::value, std::string("hello from the PC"));
    ExchangePosition(*variables.robotPositionVariable, CoordinateType::Pulse, {1000, -2000, 3000, 0, -122850, 600});
    ExchangePosition(*variables.basePositionVariable, CoordinateType::BaseCoordinate, {125.5, -20.25, 300});
    ExchangePosition(*variables.stationPositionVariable, CoordinateType::Pulse, {4000, 5000});
    std::cout.fill(' '); // the output operators leave it at '0'
}

} // namespace demo
