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

/// Plays targets and knows where the control groups are.
///
/// - Targets are taken before Start too, up to TargetBuffer::Capacity steps, the one being played included; the next is
///   refused with BufferIsFull until there is room. A target counts with the settings of its slot at that moment.
/// - Start is refused unless the controller is in remote mode, without alarm, hold and running job, and has servo power.
///   It holds until Stop: later targets are played as they come.
/// - Stop and hold bring the groups to a standstill on their paths and keep the buffer; motion goes on along the path
///   with the next Start, or when the hold ends.
/// - An alarm, loss of servo power or of remote mode, or a job that starts interrupts a trajectory: it goes on only with a
///   new Start, and until then, or until the targets are cleared, more targets are refused, with the reason while it
///   lasts and then with PlaybackInterrupted. When nothing was left to play, nothing is interrupted.
class MotionEngine final : public Activity {
public:
    /// Becomes the motion activity of the model, which outlives it.
    explicit MotionEngine(ControllerModel& model);

    /// Whether a trajectory is being played, also while it is held.
    bool IsRunning() const override { return isStarted_ && !isInterrupted_ && player_.HasSteps(); }

    void OnStateChange() override;

    /// Whether Tick has anything to do.
    bool NeedsTicks() const { return player_.IsMoving() || !servos_.IsAtRest(); }

    /// Advances to `now`, the time of the model's clock. While nothing moves nobody needs to call it: what starts something
    /// brings the time up first.
    void Tick(Clock::Duration now);

    Refusal Start();
    void Stop();
    Refusal SendTargets(MotionTargetSend const& step);

    /// `slot` as on the wire: a motion slot, or MotionClearGroupTargets::AllGroups.
    Refusal Clear(std::int32_t slot);

    /// Null if the controller has no group in this slot.
    TargetSettings* Settings(TargetControlGroup slot);

    /// The slot has a group.
    double Progress(TargetControlGroup slot) const { return player_.Progress(static_cast<std::size_t>(slot)); }

    Workcell const& Cell() const { return cell_; }
    Stance const& Positions() const { return player_.Now(); }
    AxisValues const& PositionOf(ControlGroup const& group) const { return Positions()[cell_.Index(group)]; }

    /// The tool that a group's targets are read with; 0 for a group that has no motion slot.
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
    Stance planned_; ///< room for planning a step, kept so that no datagram allocates
    Clock::Duration time_{0};
    bool isStarted_ = false;
    bool isInterrupted_ = false;
};

} // namespace harvlink::simulator
