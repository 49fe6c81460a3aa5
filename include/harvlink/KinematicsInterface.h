#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "harvlink/ControlGroupId.h"
#include "harvlink/Export.h"
#include "harvlink/PositionData.h"
#include "harvlink/StatusInfo.h"

namespace harvlink {

enum class KinematicConversions : std::int32_t {
    JointAngleToCartesianPos = 0,
    PulseToJointAngle = 1,
    JointAngleToPulse = 2,
    PulseToCartesianPos = 3,
    CartesianPosToJointAngle = 4,
    CartesianPosToPulse = 5,
};

/// How the arm configuration is found when a Cartesian position is converted.
enum class KinematicType : std::int32_t {
    KinematicFromSystem = 0, ///< system parameter S2C430 decides
    Delta = 1, ///< a Delta robot, which needs the previous angles
    KinematicFigure = 2, ///< the figure of the position
};

/// Converts positions. The controller does the computing. From `VersionYA` up; an older or unknown controller
/// gives UnsupportedOnThisController, sends nothing and leaves `result` untouched.
///
/// One exchange per conversion, two for PulseToCartesianPos and CartesianPosToPulse; each takes at most (1 + retries) x
/// time-out. The controller's conversion codes come with 0x70000000 subtracted, such as -1878982661 "Inverse kinematics
/// wrong.". No answer gives ResponseTimeout. May be called from several threads at once; nothing moves.
///
/// `position` and `result` must be different records: `result` is zeroed before `position` is read.
class KinematicsInterface {
public:
    KinematicsInterface() = default;
    KinematicsInterface(KinematicsInterface const&) = delete;
    KinematicsInterface& operator=(KinematicsInterface const&) = delete;
    virtual ~KinematicsInterface() = default;

    /// The conversions 0 to 3; any other gives InvalidConversionToCartesian. Joint angles go in as degrees on all eight
    /// axes, whatever the coordinate type says, and come out with type JointAngle. `result` is zero on failure.
    virtual StatusInfo ConvertPosition(ControlGroupId group, PositionData& position, KinematicConversions conversion,
                                       PositionData& result) = 0;

    /// The conversions 4 and 5; any other gives InvalidConversionFromCartesian. `previousAngles` go to the controller
    /// truncated to whole numbers, without a factor: give them in the controller's unit. After a failure `result` is
    /// zero; for CartesianPosToJointAngle it then has the type JointAngle.
    virtual StatusInfo ConvertPositionFromCartesian(ControlGroupId group, PositionData& position,
                                                    KinematicConversions conversion, KinematicType type,
                                                    std::array<double, 8> const& previousAngles,
                                                    PositionData& result) = 0;

    /// For an application to ask before it converts from Cartesian, which does not check this itself: whether a
    /// conversion of this type has what it needs. Only KinematicFromSystem asks the controller, in one exchange, for
    /// parameter S2C430; a read that fails counts as 0, so that the figure decides. DeltaPreviousAngleMissing for a Delta
    /// robot without previous angles, InvalidSystemKinematicType if the parameter holds no known type.
    HARVLINK_EXPORT StatusInfo CheckInputCartPosParams(std::optional<KinematicType> type, bool previousAngleGiven);
};

} // namespace harvlink
