#include <ostream>
#include <stdexcept>
#include <string_view>

#include "harvlink/PositionData.h"
#include "position/PositionMessages.h"

namespace harvlink {
namespace {

template <typename Enum>
std::ostream& WriteFirstOrSecond(std::ostream& stream, Enum value, std::string_view first, std::string_view second) {
    return stream << (static_cast<std::int32_t>(value) == 0 ? first : second);
}

std::ostream& WriteAxisName(std::ostream& stream, std::int32_t axis, std::array<std::string_view, 8> const& names,
                            std::string_view unknown) {
    return stream << (axis >= 0 && axis < 8 ? names[static_cast<std::size_t>(axis)] : unknown);
}

template <typename Axis>
Axis NextAxis(Axis& axis) {
    auto const number = static_cast<std::int32_t>(axis);
    if (number >= 8) {
        throw std::out_of_range("for E& operator ++ (E&)");
    }
    return axis = static_cast<Axis>(number + 1);
}

template <typename Axis>
void WriteAxes(std::ostream& stream, std::array<double, 8> const& axes, Axis first, int end, std::string_view unit) {
    for (Axis axis = first; static_cast<std::int32_t>(axis) < end; axis++) {
        stream << "\nAxis " << axis << " : " << axes[static_cast<std::size_t>(axis)] << unit;
    }
}

} // namespace

namespace AxisIndex {

PulseAxis operator++(PulseAxis& axis, int) {
    return NextAxis(axis);
}

CartesianAxis operator++(CartesianAxis& axis, int) {
    return NextAxis(axis);
}

std::ostream& operator<<(std::ostream& stream, PulseAxis const& axis) {
    return WriteAxisName(stream, static_cast<std::int32_t>(axis), {"S", "L", "U", "R", "B", "T", "E", "W"},
                         "Unknown AxisIndex::PulseAxis");
}

std::ostream& operator<<(std::ostream& stream, CartesianAxis const& axis) {
    return WriteAxisName(stream, static_cast<std::int32_t>(axis), {"X", "Y", "Z", "Rx", "Ry", "Rz", "Re", "Rw"},
                         "Unknown AxisIndex::CartesianAxis");
}

} // namespace AxisIndex

std::ostream& operator<<(std::ostream& stream, CoordinateType const& type) {
    switch (type) {
    case CoordinateType::Pulse:
        return stream << "Pulse";
    case CoordinateType::BaseCoordinate:
        return stream << "BaseCoordinate";
    case CoordinateType::RobotCoordinate:
        return stream << "RobotCoordinate";
    case CoordinateType::ToolCoordinate:
        return stream << "ToolCoordinate";
    case CoordinateType::UserCoordinate:
        return stream << "UserCoordinate";
    case CoordinateType::MasterTool:
        return stream << "MasterTool";
    default: // Undefined and JointAngle have no text, on purpose
        return stream << "Unknown CoordinateType";
    }
}

std::ostream& operator<<(std::ostream& stream, FrontOrBack const& value) {
    return WriteFirstOrSecond(stream, value, "Front", "Back");
}

std::ostream& operator<<(std::ostream& stream, UpperOrLower const& value) {
    return WriteFirstOrSecond(stream, value, "Upper", "Lower");
}

std::ostream& operator<<(std::ostream& stream, FlipOrNoFlip const& value) {
    return WriteFirstOrSecond(stream, value, "Flip", "NoFlip");
}

std::ostream& operator<<(std::ostream& stream, AxisAngle const& value) {
    return WriteFirstOrSecond(stream, value, "<180", ">180");
}

std::ostream& operator<<(std::ostream& stream, Figure const& figure) {
    // Two blanks after the first comma: the format has it so.
    return stream << figure.frontOrBack << ",  " << figure.upperOrLower << ", " << figure.flipOrNoFlip << ", S"
                  << figure.sAngle << ", L" << figure.lAngle << ", U" << figure.uAngle << ", R" << figure.rAngle
                  << ", B" << figure.bAngle << ", T" << figure.tAngle << ", E" << figure.eAngle << ", W"
                  << figure.wAngle;
}

std::ostream& operator<<(std::ostream& stream, PositionData const& position) {
    stream << "Coordinate Type: " << position.coordinateType;
    if (position.coordinateType == CoordinateType::Pulse) {
        stream << "\nTool Number: " << position.toolNumber << "\nAxes: ";
        WriteAxes(stream, position.axes, AxisIndex::PulseAxis::S, 8, " pulses.");
        return stream;
    }
    stream << "\nFigure: \n"
           << position.figure << "\nTool Number: " << position.toolNumber
           << "\nUser Coordinate Number: " << position.userCoordinateNumber << "\nAxes: ";
    WriteAxes(stream, position.axes, AxisIndex::CartesianAxis::X, 3, " millimeters.");
    WriteAxes(stream, position.axes, AxisIndex::CartesianAxis::Rx, 8, " degrees.");
    return stream;
}

std::ostream& operator<<(std::ostream& stream, UAPICoordType const& type) {
    switch (static_cast<std::int32_t>(type)) {
    case 0:
        return stream << "Base";
    case 1:
        return stream << "User";
    case 2:
    case 6:
        return stream << "Tool";
    case 3:
        return stream << "TCP";
    case 4:
        return stream << "Joint";
    case 5:
        return stream << "Radian";
    case 7:
        return stream << "Master Tool";
    default:
        return stream << "Invalid or undefined";
    }
}

} // namespace harvlink
