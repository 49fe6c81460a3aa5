#pragma once

#include <array>
#include <cstdint>

#include "simulator/arm/Workcell.h"
#include "simulator/base/Clock.h"
#include "simulator/model/Activity.h"
#include "simulator/motion/MotionPlayer.h"
#include "simulator/motion/ServoMonitor.h"
#include "simulator/motion/TargetSettings.h"
#include "simulator/protocol/Refusal.h"

namespace harvlink::simulator {

class ControllerModel;

/// Plays targets and knows the positions of the control groups.
///
/// - Targets are also accepted before Start, up to TargetBuffer::Capacity steps including the one being played. Further
///   steps are refused with BufferIsFull until there is room. A target uses the settings that its slot has when it
///   arrives.
/// - Start is refused unless the controller is in remote mode, without alarm, hold and running job, and has servo
///   power. It stays in effect until Stop: later targets are played as they arrive.
/// - Stop and hold stop the groups on their paths and keep the buffer. Motion continues along the path with the next
///   Start, or when the hold ends.
/// - An alarm, loss of servo power or of remote mode, or the start of a job interrupts a trajectory. It continues only
///   with a new Start. Until then, or until the targets are cleared, more targets are refused: with the reason while it
///   lasts, and then with PlaybackInterrupted. If nothing is left to play, nothing is interrupted.
class MotionEngine final : public Activity {
public:
    /// Registers as the motion activity of the model, which must outlive the engine.
    explicit MotionEngine(ControllerModel& model);

    /// Whether a trajectory is being played, even during a hold.
    bool IsRunning() const override { return isStarted_ && !isInterrupted_ && player_.HasSteps(); }

    void OnStateChange() override;

    /// Whether Tick has anything to do.
    bool NeedsTicks() const { return player_.IsMoving() || !servos_.IsAtRest(); }

    /// Advances to `now`, the time of the model's clock. It need not be called while nothing moves, because every
    /// operation first advances to the present time.
    void Tick(Clock::Duration now);

    Refusal Start();
    void Stop();
    Refusal SendTargets(MotionTargetSend const& message);

    /// `slot` as on the wire: a motion slot, or MotionClearGroupTargets::AllGroups.
    Refusal Clear(std::int32_t slot);

    /// Null if the controller has no group in this slot.
    TargetSettings* Settings(TargetControlGroup slot);

    /// There must be a group in this slot.
    double Progress(TargetControlGroup slot) const { return player_.Progress(static_cast<std::size_t>(slot)); }

    Workcell const& Cell() const { return cell_; }
    GroupPositions const& Positions() const { return player_.Now(); }
    AxisValues const& PositionOf(ControlGroup const& group) const { return Positions()[cell_.Index(group)]; }

    /// The tool that is set for the targets of a group; 0 if the group has no motion slot.
    std::int32_t ActiveTool(ControlGroup const& group) const;

    WireAxes PositionError(ControlGroup const& group) const { return servos_.PositionError(group); }
    WireAxes Torque(ControlGroup const& group) const;

private:
    Refusal CheckState() const;
    Refusal CheckSlots(std::uint32_t groupBits) const;
    Refusal PlanStep(MotionTargetSend const& message, PlannedStep& step);
    Refusal PlanGroups(MotionTargetSend const& message, bool arms, PlannedStep& step);
    void UpdateRun();

    ControllerModel& model_;
    Workcell cell_;
    MotionPlayer player_;
    ServoMonitor servos_;
    std::array<TargetSettings, MotionSlots> settings_{};
    GroupPositions planned_; ///< for planning a step; a member, so that no datagram allocates memory
    Clock::Duration time_{0};
    bool isStarted_ = false;
    bool isInterrupted_ = false;
};

} // namespace harvlink::simulator
