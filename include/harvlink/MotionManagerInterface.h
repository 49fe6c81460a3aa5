#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <limits>
#include <optional>
#include <type_traits>

#include "harvlink/ControlGroupId.h"
#include "harvlink/Export.h"
#include "harvlink/PositionData.h"
#include "harvlink/StatusInfo.h"
#include "harvlink/TrajectoryState.h"

namespace harvlink {

enum class MoveInterpolationType : std::int32_t { NoMove = 0, Joint = 1, Line = 2, Circle = 3 };

/// As an acceleration or deceleration ratio: keep the ratio that the controller has.
inline constexpr double RatioNotSpecified = std::numeric_limits<double>::max();

/// One point of a trajectory for one control group.
struct Motion {
    ControlGroupId controlGroup{};
    double speed = 0.0; ///< Joint: per cent, 0.01 to 100. Line and Circle: mm/s, 0.1 to 1500.
    double accelerationRatio = RatioNotSpecified; ///< per cent, 20 to 100
    double decelerationRatio = RatioNotSpecified; ///< per cent, 20 to 100
    MoveInterpolationType moveType{};
    PositionData position{}; ///< destination, with its coordinate type, figure, tool and user coordinate number
};

/// A `Circle` motion: the arc to `position` passes through `auxiliaryAxes`, given in the units of
/// `position.coordinateType`. A motion with move type Circle must be one of these: the eight values are read from
/// behind the fields of Motion, and there is no way to tell whether they are there.
struct CircularMotion : Motion {
    std::array<double, 8> auxiliaryAxes{};
};

static_assert(sizeof(CircularMotion) == sizeof(Motion) + 8 * sizeof(double),
              "callers of other languages lay the eight values directly behind the motion");
static_assert(std::is_trivially_copyable_v<Motion>);

/// Speeds in the controller's units.
struct SpeedStruct {
    std::int32_t jointSpeed = 0; ///< 0.01 %
    std::int32_t linearSpeed = 0; ///< 0.1 mm/s
    std::int32_t angularSpeed = 0;
};

/// Moves up to four control groups through a queue of points. **It moves a real machine.** From `VersionYA` up; on
/// older controllers every operation gives UnsupportedOnThisController and sends nothing.
///
/// AddPointToTrajectory checks and queues a point without any network work: it waits at most for a clear of queued
/// points that is under way. A thread of the library, started by the first successful MotionStart and ended by
/// CloseConnection, sends the points in order as fast as the controller takes them. If the controller refuses one, the
/// thread raises alarm 8015 on the pendant, writes the log file, empties the queue and clears the controller's targets;
/// the program is not called back.
///
/// To go on after that, on the same connection: ClearAllFaults, SetServos(On), MotionStart, and queue new points from
/// where the robot stands. The alarm drops the servo power: without turning it on, the next point raises 8015 again.
/// MotionStart is needed if the robot was moving when the alarm came, and does no harm if it stood.
///
/// All operations may be called from several threads at once. The controller's motion codes come with 50000000
/// subtracted, such as -49934466 "Servo Off". No answer gives ResponseTimeout.
///
/// CloseConnection sends no stop: stop first. It waits until the queue is empty or a failure has emptied it, without a
/// bound while the controller answers that its buffer is full: MotionStop(true) ends that.
///
/// Three rules of a connection with options change this, see Rule. IdleMonitor: the thread sleeps while it has nothing to
/// send. SentStep: after a clear, only the step that was sent leaves the queue. BoundedClose: a stop, a clear and a close end
/// the wait for room in the controller's buffer; no target goes out after MotionStop(false), or a stop without an answer,
/// until the next MotionStart; a close drops the queue and takes at most two exchanges. With any rule, the log file and
/// a failure's message name controller, step and group in a line of their own. Points without full access: AccessDenied.
class MotionManagerInterface {
public:
    MotionManagerInterface() = default;
    MotionManagerInterface(MotionManagerInterface const&) = delete;
    MotionManagerInterface& operator=(MotionManagerInterface const&) = delete;
    virtual ~MotionManagerInterface() = default;

    /// Queues one step: the groups of all given motions start together. Motions with move type NoMove take no part. Of
    /// two motions for one group the later one counts. Returns "Point added to trajectory." with code 0, or, with the
    /// queue unchanged: 3370 for a group that is none of the controller's four motion slots, InvalidCoordinateType for
    /// a JointAngle position, AccelerationOutOfRange, DecelerationOutOfRange, JointSpeedOutOfRange, SpeedOutOfRange.
    /// Only `first` can be a CircularMotion; a circle among the others gets a mid-point of zeros.
    virtual StatusInfo AddPointToTrajectory(Motion const& first, std::optional<Motion> second = std::nullopt,
                                            std::optional<Motion> third = std::nullopt,
                                            std::optional<Motion> fourth = std::nullopt) = 0;

    /// Asks how far the group has come; the controller's number, unchanged. Take it as the count of targets that the
    /// group has reached since its targets were last cleared, and the part of the way to the next: 2.5 is halfway from
    /// the second to the third. The virtual controller counts so; no other has been tried, so check it once on yours.
    /// Opening a connection, MotionStop(true), ClearAllTrajectory and a refused point clear the targets. 0.0 on failure;
    /// code 65504 for a group that is none of the four motion slots. One exchange.
    virtual double GetMotionTargetProgress(ControlGroupId group, StatusInfo& status) = 0;

    /// Lets the controller move to its targets, and starts feeding the queue. One exchange.
    virtual StatusInfo MotionStart() = 0;

    /// Stops the motion; with `clearTrajectory` a stop that succeeded also empties the queue and the controller's
    /// targets. Without it, the queue goes on being fed; Rule::BoundedClose holds it until the next MotionStart, also if
    /// the answer to the stop is lost. One or two exchanges.
    virtual StatusInfo MotionStop(bool clearTrajectory) = 0;

    /// Empties the queue and the controller's targets. A point that is being sent at this moment still goes out.
    virtual StatusInfo ClearAllTrajectory() = 0;

    // Added to the designed operations. A class of a user that does not override them gives UnsupportedOnThisController.

    /// What has become of the steps, what the thread is doing, and the last failure. No exchange. The state stays what it
    /// was on a controller that takes no steps.
    virtual StatusInfo GetTrajectoryState(TrajectoryState& state) {
        state = {};
        return StatusInformation(ErrorStatusCodes::UnsupportedOnThisController);
    }

    /// As above, and sets `stepNumber` to the number of the step: 1 for the first of the connection, then 2, and so on. 0 on
    /// failure.
    virtual StatusInfo AddPointToTrajectory(std::uint64_t& stepNumber, Motion const& /*first*/,
                                            std::optional<Motion> /*second*/ = std::nullopt,
                                            std::optional<Motion> /*third*/ = std::nullopt,
                                            std::optional<Motion> /*fourth*/ = std::nullopt) {
        stepNumber = 0;
        return StatusInformation(ErrorStatusCodes::UnsupportedOnThisController);
    }

    /// Waits until all groups of a step have arrived: the controller counts the step's targets as reached, and each group is
    /// within `tolerance` of its target (pulses or millimetres; X, Y and Z of a Cartesian one) or was sent on from there.
    /// Targets are counted from the last clear by this connection. If another program cleared them, the position alone
    /// decides until the next clear.
    ///
    /// Returns "OK"; WaitTimedOut, for example during a hold, after MotionStop(false) or without a MotionStart; the code of
    /// the first active alarm as soon as the controller has one, such as 8015 for a step that it refused, with all alarms in
    /// the text; GeneralError if it has an error and no alarm; the status of a step that failed before, whose alarm is reset;
    /// StepWithdrawn for a step that was dropped from the queue, or was sent and cleared on its way; UnknownStep for a number
    /// that was never given, or lies more than 1,024 steps back; the status of a read that failed.
    ///
    /// Whenever it returns, no failed step is being handled: what is queued next is not dropped with it. So it can take longer
    /// than the time-out: by the alarm and the clear, two exchanges; after an alarm, by up to a second until the queue that the
    /// controller then refuses is dropped, and by the reads of the active alarms, up to four. A close ends the wait with
    /// StepWithdrawn. Every 20 ms one exchange for the state and, once the step was sent, up to two for each of its groups.
    /// They only read.
    virtual StatusInfo WaitForTarget(std::uint64_t /*stepNumber*/, unsigned /*timeoutMilliseconds*/,
                                     double /*tolerance*/ = 1.0) {
        return StatusInformation(ErrorStatusCodes::UnsupportedOnThisController);
    }

    /// Waits until the controller has taken a step. "OK", the status of a step that failed, WaitTimedOut, StepWithdrawn or
    /// UnknownStep, as above. No exchange.
    virtual StatusInfo WaitUntilSent(std::uint64_t /*stepNumber*/, unsigned /*timeoutMilliseconds*/) {
        return StatusInformation(ErrorStatusCodes::UnsupportedOnThisController);
    }
};

/// "Joint", "Line", "Circle", otherwise "Invalid or undefined".
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, MoveInterpolationType const& type);

/// Three lines of raw integers. The unit words belong to the format, not to the numbers: 1234 of `linearSpeed` is 123.4
/// mm/s and prints as "1234 mm/sec".
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, SpeedStruct const& speed);

/// Eight values separated by ", ". Found with `using namespace harvlink` or `using harvlink::operator<<`.
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, std::array<double, 8> const& axes);

} // namespace harvlink
