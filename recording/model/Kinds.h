#pragma once

#include <string_view>

#include "recording/model/Records.h"

/// @file
/// The kinds of readings that recordings of robot controllers have, with their items in this order. Docs and replay rely on it.

namespace harvlink::recording {

namespace kind {
inline constexpr std::string_view State = "state"; ///< mode, cycle, running, hold, alarm, error, servo
inline constexpr std::string_view Job = "job"; ///< name, line, step, speed
inline constexpr std::string_view Alarms = "alarms"; ///< count; code, subcode, time and name of each of four places
inline constexpr std::string_view Position = "position"; ///< eight axes; coordinate, tool, user, figure. Or one axis
inline constexpr std::string_view Torque = "torque"; ///< eight axes, or one
inline constexpr std::string_view PositionError = "position-error"; ///< eight axes, or one
inline constexpr std::string_view ByteVariable = "byte-variable";
inline constexpr std::string_view IntegerVariable = "integer-variable";
inline constexpr std::string_view DoubleIntVariable = "double-integer-variable";
inline constexpr std::string_view RealVariable = "real-variable";
inline constexpr std::string_view StringVariable = "string-variable";
inline constexpr std::string_view RobotPositionVariable = "robot-position-variable"; ///< as Position
inline constexpr std::string_view BasePositionVariable = "base-position-variable"; ///< as Position
inline constexpr std::string_view StationPositionVariable = "station-position-variable"; ///< as Position
inline constexpr std::string_view Signal = "signal";
inline constexpr std::string_view SignalGroup = "signal-group";
inline constexpr std::string_view Register = "register";
inline constexpr std::string_view OperatingTime = "operating-time"; ///< start (seconds since 1970), elapsed (seconds)
inline constexpr std::string_view Software = "software"; ///< version, model
inline constexpr std::string_view TargetProgress = "target-progress";
} // namespace kind

/// The places of the items of a position after its axes.
namespace position_item {
inline constexpr std::size_t Axes = 8;
inline constexpr std::size_t Coordinate = 8;
inline constexpr std::size_t Tool = 9;
inline constexpr std::size_t User = 10;
inline constexpr std::size_t Figure = 11; ///< a bit for each field of a figure, the first the lowest
inline constexpr std::size_t Count = 12;
} // namespace position_item

/// The number of alarms that are active at once, and of the items of each.
inline constexpr std::size_t AlarmPlaces = 4;
inline constexpr std::size_t AlarmItems = 4;

/// Gives a reading the items of its kind, coordinate and axis. Throws std::invalid_argument for an unknown kind.
void SetItems(RecordedReading& reading);

} // namespace harvlink::recording
