#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>

#include "harvlink/ControlGroupId.h"
#include "harvlink/Export.h"
#include "harvlink/PositionData.h"
#include "harvlink/StatusInfo.h"

namespace harvlink {

/// Difference between commanded and reached position, in pulses, one value per axis.
struct PositionErrorData {
    std::array<std::int32_t, 8> axes{};
};

/// Torque in the controller's unit, one value per axis.
struct TorqueData {
    ControlGroupId controlGroup{}; ///< always R1 after a read, whatever group was asked for
    std::array<std::int32_t, 8> axes{};
};

/// Live values of one control group. One exchange per call, at most (1 + retries) x time-out. Every operation may be
/// called from several threads at once; exchanges queue. Reading again is always safe.
///
/// A group that the controller does not know gives code -59959039, "Invalid Control Group Id". No answer gives
/// ResponseTimeout. Outputs are cleared first and stay cleared on failure, with one exception: a refused read of
/// torque, or of a position by the older command, fills in what the refusal carried, normally zeros.
class ControlGroupInterface {
public:
    ControlGroupInterface() = default;
    ControlGroupInterface(ControlGroupInterface const&) = delete;
    ControlGroupInterface& operator=(ControlGroupInterface const&) = delete;
    virtual ~ControlGroupInterface() = default;

    /// Reads where a group is.
    ///
    /// Before anything is sent: ControlGroupNotAttached for a group that the controller did not list when the connection
    /// was opened; ActiveToolOnly for a tool other than 0 on a controller older than `VersionYA`; InvalidCoordinateType
    /// for a type other than Pulse, BaseCoordinate and, from `VersionYA` up, RobotCoordinate and UserCoordinate; 45069
    /// and 45070 for a tool or user coordinate number (1 to 63) out of range with UserCoordinate. With BaseCoordinate and
    /// RobotCoordinate a tool out of range gives an all-zero position and the status "OK".
    ///
    /// Pulse, and below `VersionYA` every type, is read by the older command, the others by the extended one.
    /// `userCoordinateNumber` and `toolNumber` are ignored for Pulse. In the result the user coordinate number is one
    /// above what the controller answered, and the eighth axis is 0 unless the group has eight.
    virtual StatusInfo ReadPositionData(ControlGroupId group, CoordinateType type, unsigned char userCoordinateNumber,
                                        unsigned char toolNumber, PositionData& position) = 0;

    /// Reads the axis letters of a group; a zero byte stands for an axis that the group does not have.
    virtual StatusInfo ReadAxisConfiguration(ControlGroupId group, std::array<char, 8>& configuration) = 0;

    /// Reads the position error of all axes, in pulses. The group is checked by the controller alone, as for the two
    /// others.
    virtual StatusInfo ReadPositionError(ControlGroupId group, PositionErrorData& data) = 0;

    /// Reads the torque of all axes.
    virtual StatusInfo ReadTorqueData(ControlGroupId group, TorqueData& data) = 0;
};

/// One line per axis, each with a line end.
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, PositionErrorData const& data);

/// The group and the first seven values, without a line end at the close. The eighth is never printed.
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, TorqueData const& data);

} // namespace harvlink
