#include "motion/TargetWait.h"

#include <algorithm>
#include <cmath>

#include "controller/AlarmRequests.h"
#include "controller/PositionRequests.h"
#include "controller/StateRequests.h"
#include "motion/MotionRequests.h"
#include "position/AxisScaling.h"

namespace harvlink {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds lookPeriod{20};

/// How long a wait that an alarm ends still waits for the queue to be refused and dropped.
constexpr milliseconds settlingTime{1000};

constexpr std::size_t comparedCartesianAxes = 3;

/// Why nothing moves on.
std::string_view ReasonOf(TrajectoryMonitorState monitor) {
    switch (monitor) {
    case TrajectoryMonitorState::NotStarted:
        return " MotionStart was not called.";
    case TrajectoryMonitorState::HeldBack:
        return " The controller has no room for more targets.";
    case TrajectoryMonitorState::Stopped:
        return " The motion was stopped; MotionStart goes on.";
    default:
        return "";
    }
}

bool IsThere(SentTarget const& target, PositionData const& position, double tolerance) {
    auto const aim = ScalingOf(target.coordinateType).FromWire(target.axes);
    std::size_t const compared = target.coordinateType == CoordinateType::Pulse ? aim.size() : comparedCartesianAxes;
    return std::equal(aim.begin(), aim.begin() + static_cast<std::ptrdiff_t>(compared), position.axes.begin(),
                      [&](double a, double b) { return std::abs(a - b) <= tolerance; });
}

std::string TextOf(ActiveAlarms const& alarms) {
    std::string text;
    for (AlarmData const& alarm : alarms.alarms) {
        if (alarm.code != 0) {
            text += (text.empty() ? "alarm " : ", alarm ") + std::to_string(alarm.code) + '-' +
                    std::to_string(alarm.subcode) + ' ' + alarm.name.substr(0, alarm.name.find('\0'));
        }
    }
    return text;
}

} // namespace

TargetWait::TargetWait(NetworkManager& engine, TrajectoryProgress& trajectoryProgress, GroupNumberMap const& map,
                       StepNumber stepNumber, unsigned timeoutMilliseconds)
    : networkManager(engine),
      progress(trajectoryProgress),
      visit(trajectoryProgress),
      groupNumberMap(map),
      number(stepNumber),
      step("Step " + std::to_string(stepNumber)),
      timeout(timeoutMilliseconds),
      end(TrajectoryProgress::Clock::now() + milliseconds(timeoutMilliseconds)) {}

StatusInfo TargetWait::UntilSent() {
    bool const isOver = progress.AwaitOutcome(number, end);
    return isOver ? OutcomeOf(progress.Look(number)) : TimedOut("was not sent");
}

StatusInfo TargetWait::UntilThere(double tolerance) {
    for (;;) {
        if (Result const result = LookAtStep(tolerance)) {
            return *result;
        }
        if (Result const result = LookAtState()) {
            return *result;
        }
        auto const now = TrajectoryProgress::Clock::now();
        if (now >= end) {
            return TimedOut("did not arrive");
        }
        progress.Pause(std::min(end, now + lookPeriod));
    }
}

TargetWait::Result TargetWait::LookAtStep(double tolerance) {
    StepRecord const record = progress.Look(number);
    if (progress.IsClosing()) {
        return OutcomeOf({.number = number, .outcome = StepOutcome::Withdrawn});
    }
    switch (record.outcome) {
    case StepOutcome::Queued:
        return std::nullopt;
    case StepOutcome::Sent:
        return LookAtGroups(record, tolerance);
    case StepOutcome::Unknown:
        return Unknown();
    default:
        progress.AwaitSettled(TrajectoryProgress::Clock::now());
        Result const alarms = LookAtState();
        return alarms ? alarms : OutcomeOf(record);
    }
}

TargetWait::Result TargetWait::LookAtGroups(StepRecord const& record, double tolerance) {
    for (std::size_t slot = 0; slot < MotionSlots; ++slot) {
        if (record.groups[slot]) {
            Result result = LookAtTarget(record, slot, tolerance);
            if (!result || result->StatusCode != 0) {
                return result;
            }
        }
    }
    return StatusInformation(ErrorStatusCodes::Ok);
}

/// The group has arrived if the controller counts its target as reached, and it stands there or was sent on. Without a
/// count the position alone decides.
TargetWait::Result TargetWait::LookAtTarget(StepRecord const& record, std::size_t slot, double tolerance) {
    SentTarget const& target = record.targets[slot];
    bool const isCleared = record.clears != progress.Clears();
    if (!isCleared && target.count != 0 && progress.IsCountKnown()) {
        Result count = LookAtCount(record, slot);
        if (!count || count->StatusCode != 0 || progress.IsFollowed(slot, target.count)) {
            return count;
        }
    }
    PositionData position;
    StatusInfo status = ReadPosition(target, *groupNumberMap.groups[slot], position);
    if (status.StatusCode != 0 || IsThere(target, position, tolerance)) {
        return status;
    }
    return isCleared
               ? Result(StatusInformation(ErrorStatusCodes::StepWithdrawn,
                                          step + " was sent, but the controller's targets were cleared since, and "
                                                 "the group is not there."))
               : std::nullopt;
}

TargetWait::Result TargetWait::LookAtCount(StepRecord const& record, std::size_t slot) {
    double reached = 0.0;
    StatusInfo status = CarryOut(networkManager, TargetProgressRequest{static_cast<TargetControlGroup>(slot)}, reached);
    if (status.StatusCode != 0) {
        return status;
    }
    progress.See(record.clears, slot, reached);
    return reached < record.targets[slot].count ? std::nullopt : Result(std::move(status));
}

StatusInfo TargetWait::ReadPosition(SentTarget const& target, ControlGroupId group, PositionData& position) {
    auto const tool = static_cast<std::uint16_t>(std::max(target.toolNumber, 0));
    auto const frame = static_cast<std::uint16_t>(target.userCoordinateNumber);
    return CarryOutPosition(networkManager, group, target.coordinateType, frame, tool, position);
}

/// An alarm ends the wait, but not before the queue that it makes the controller refuse was dropped: what the caller
/// queues next has to stay.
TargetWait::Result TargetWait::LookAtState() {
    ControllerStateData state;
    StatusInfo status = CarryOut(networkManager, StateRequest{}, state);
    if (status.StatusCode != 0) {
        return status;
    }
    if (!state.isAlarming && !state.isErroring) {
        return std::nullopt;
    }
    progress.AwaitSettled(TrajectoryProgress::Clock::now() + settlingTime);
    return LookAtAlarms();
}

TargetWait::Result TargetWait::LookAtAlarms() {
    ActiveAlarms alarms;
    ActiveAlarmsSequence sequence(alarms);
    StatusInfo status = CarryOutAll(networkManager, sequence);
    if (status.StatusCode != 0) {
        return status;
    }
    auto const first = std::ranges::find_if(alarms.alarms, [](AlarmData const& alarm) { return alarm.code != 0; });
    if (first == alarms.alarms.end()) {
        return StatusInformation(ErrorStatusCodes::GeneralError,
                                 step + " did not arrive: the controller has an error.");
    }
    return StatusInformation(static_cast<int>(first->code), step + " did not arrive: " + TextOf(alarms));
}

StatusInfo TargetWait::OutcomeOf(StepRecord const& record) const {
    switch (record.outcome) {
    case StepOutcome::Sent:
        return StatusInformation(ErrorStatusCodes::Ok);
    case StepOutcome::Refused: {
        TrajectoryFailure failure = progress.State().lastFailure;
        return failure.stepNumber == number ? failure.status
                                            : StatusInformation(record.code, step + " failed; see HarvlinkLog.txt.");
    }
    case StepOutcome::Unknown:
        return Unknown();
    default:
        return StatusInformation(ErrorStatusCodes::StepWithdrawn);
    }
}

StatusInfo TargetWait::Unknown() const {
    return StatusInformation(ErrorStatusCodes::UnknownStep);
}

StatusInfo TargetWait::TimedOut(std::string_view what) const {
    std::string text = step + ' ' + std::string(what) + " within " + std::to_string(timeout) + " ms.";
    return StatusInformation(ErrorStatusCodes::WaitTimedOut, text.append(ReasonOf(progress.State().monitor)));
}

} // namespace harvlink
