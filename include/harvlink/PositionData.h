#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>

#include "harvlink/Export.h"

namespace harvlink {

/// How the eight axes of a PositionData are to be read.
enum class CoordinateType : std::int32_t {
    Pulse = 0,
    BaseCoordinate = 16,
    RobotCoordinate = 17,
    ToolCoordinate = 18,
    UserCoordinate = 19,
    MasterTool = 20,
    Undefined = 55, ///< what the controller named has no counterpart here
    /// Eight joint angles in degrees. Only position conversion gives it, and takes it as a source. Motion targets,
    /// reads of a position and writes of a robot position refuse it; a write of a base axis sends the number on, one of
    /// a station ignores it.
    JointAngle = 56,
};

enum class FrontOrBack : std::int32_t { Front = 0, Back = 1 };
enum class UpperOrLower : std::int32_t { Upper = 0, Lower = 1 };
enum class FlipOrNoFlip : std::int32_t { Flip = 0, NoFlip = 1 };
enum class AxisAngle : std::int32_t { LessThan180 = 0, GreaterThan180 = 1 };

/// Names of the eight places of PositionData::axes.
namespace AxisIndex {

/// Axis letters of a position in pulses or joint angles. 8 is reachable by `++` and ends a loop.
enum class PulseAxis : std::int32_t { S = 0, L = 1, U = 2, R = 3, B = 4, T = 5, E = 6, W = 7 };

/// Axis names of a Cartesian position. 8 is reachable by `++` and ends a loop.
enum class CartesianAxis : std::int32_t { X = 0, Y = 1, Z = 2, Rx = 3, Ry = 4, Rz = 5, Re = 6, Rw = 7 };

/// Goes to the next axis and returns it. Throws std::out_of_range at 8 and beyond.
HARVLINK_EXPORT PulseAxis operator++(PulseAxis& axis, int);
/// The same for the axes of a Cartesian position.
HARVLINK_EXPORT CartesianAxis operator++(CartesianAxis& axis, int);

/// Writes the name of an axis.
/// @{
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, PulseAxis const& axis);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, CartesianAxis const& axis);
/// @}

} // namespace AxisIndex

/// Coordinate types as the extended commands of newer controllers number them.
enum class UAPICoordType : std::int32_t {
    UAPIPulse = 0,
    UAPIJointAngle = 1,
    UAPIBase = 2,
    UAPIRobot = 3,
    UAPIUser = 4,
    UAPITool = 6,
    UAPIMasterTool = 7,
    UAPIInvalid = 255, ///< for a CoordinateType without an extended number
};

/// Arm configuration: which of the joint positions with the same Cartesian pose is meant. Used with Cartesian types
/// only. The extended commands of newer controllers do not carry `lAngle`, `uAngle`, `bAngle`, `eAngle` and `wAngle`:
/// they are 0.
struct Figure {
    FrontOrBack frontOrBack{};
    UpperOrLower upperOrLower{};
    FlipOrNoFlip flipOrNoFlip{};
    AxisAngle sAngle{};
    AxisAngle lAngle{};
    AxisAngle uAngle{};
    AxisAngle rAngle{};
    AxisAngle bAngle{};
    AxisAngle tAngle{};
    AxisAngle eAngle{};
    AxisAngle wAngle{};
};

/// A position of a control group.
///
/// | coordinateType | axes 0 to 2 | axes 3 to 7 |
/// |---|---|---|
/// | Pulse | pulses | pulses |
/// | JointAngle | degrees | degrees |
/// | any other | millimetres | degrees |
///
/// The controller counts in 0.001 mm, 0.0001 degree and whole pulses: Cartesian values and joint angles are rounded to
/// that, halves away from zero, and pulses are truncated. A value that does not fit the controller's 32 bits, or is not
/// a number, goes out as the most negative one.
struct PositionData {
    CoordinateType coordinateType{};
    Figure figure{};
    std::int32_t toolNumber = 0;
    std::int32_t userCoordinateNumber = 0; ///< used with CoordinateType::UserCoordinate
    std::array<double, 8> axes{};
};

/// Text forms. Numbers go out in the stream's current format; none of these writes a line end at its close.
/// @{
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, CoordinateType const& type);
/// "Base", "User", "Tool", "TCP", "Joint", "Radian", "Master Tool" for 0 to 7, 2 and 6 both being "Tool", otherwise
/// "Invalid or undefined". The words are those of the format and on purpose not the meaning of the enumerators.
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, UAPICoordType const& type);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, FrontOrBack const& value);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, UpperOrLower const& value);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, FlipOrNoFlip const& value);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, AxisAngle const& value);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, Figure const& figure);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, PositionData const& position);
/// @}

} // namespace harvlink
