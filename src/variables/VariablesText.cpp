#include <ostream>

#include "harvlink/VariablesInterface.h"
#include "variables/VariableFunctions.h"

namespace harvlink {

using VariableFunctions::VarOut;

std::ostream& operator<<(std::ostream& stream, ByteVariableData const& variable) {
    return VarOut(stream, 'B', variable.variableIndex, std::to_string(variable.value)); // a number, not a character
}

std::ostream& operator<<(std::ostream& stream, IntegerVariableData const& variable) {
    return VarOut(stream, 'I', variable.variableIndex, variable.value);
}

std::ostream& operator<<(std::ostream& stream, DoubleIntVariableData const& variable) {
    return VarOut(stream, 'D', variable.variableIndex, variable.value);
}

std::ostream& operator<<(std::ostream& stream, RealVariableData const& variable) {
    return VarOut(stream, 'R', variable.variableIndex, variable.value);
}

std::ostream& operator<<(std::ostream& stream, StringVariableData const& variable) {
    return VarOut(stream, 'S', variable.variableIndex, variable.value);
}

std::ostream& operator<<(std::ostream& stream, RobotPositionVariableData const& variable) {
    return VarOut(stream, 'P', variable.variableIndex, variable.positionData);
}

std::ostream& operator<<(std::ostream& stream, BaseAxisPositionVariableData const& variable) {
    PositionData const& position = variable.positionData;
    stream << "Variable Index: " << variable.variableIndex << std::endl;
    if (position.coordinateType == CoordinateType::BaseCoordinate) {
        stream << "Coordinate Type: Base\n";
    } else if (position.coordinateType == CoordinateType::Pulse) {
        stream << "Coordinate Type: Pulse\n";
    }
    for (double const axis : position.axes) {
        stream << '[' << axis << "] ";
    }
    return stream;
}

std::ostream& operator<<(std::ostream& stream, StationPositionVariableData const& variable) {
    stream << "VariableIndex: " << variable.variableIndex << "\nCoordinates: ";
    for (double const axis : variable.positionData.axes) {
        stream << axis << ", ";
    }
    return stream;
}

} // namespace harvlink
