#pragma once

#include <array>
#include <cstdint>

#include "simulator/arm/Workcell.h"
#include "simulator/motion/Pace.h"
#include "simulator/motion/TargetBuffer.h"

namespace harvlink::simulator {

/// Plays the buffered steps one after the other and keeps where the axes are. Every move runs from standstill to
/// standstill, passes every point of its path and ends on it exactly.
class MotionPlayer {
public:
    MotionPlayer(Workcell const& cell, ControlGroups const& groups);

    bool IsFull() const { return buffer_.IsFull(); }
    bool HasSteps() const { return !buffer_.IsEmpty(); }

    /// Where the axes are, and where they will be after all steps.
    Stance const& Now() const { return now_; }
    Stance const& Planned() const { return planned_; }

    /// Puts a step behind the others. Its moves start at Planned; there must be room.
    void Add(PlannedStep const& step);

    /// Plays, or brings all moves to a standstill on their paths. The buffer stays.
    void Run(bool run);

    /// Drops all moves of a slot; one that is under way slows down and ends where it then stands.
    void Clear(std::size_t slot);

    void Advance(double seconds);

    /// Whether time changes anything.
    bool IsMoving() const;

    /// How many targets of a slot were reached since its targets were last cleared, plus the part of the way to the
    /// present one that is done.
    double Progress(std::size_t slot) const;

private:
    struct Playing {
        Pace pace{};
        double fraction = 0.0;
        bool isActive = false;
        bool isAbandoned = false;
        AxisValues halt{}; ///< where an abandoned move ends
    };

    bool PlayFront(double& seconds);
    void BeginFront();
    double AdvanceMove(std::size_t slot, double seconds);
    void Abandon(std::size_t slot);
    AxisValues& At(Stance& stance, std::size_t slot) const;

    Workcell const& cell_;
    ControlGroups const& groups_;
    TargetBuffer buffer_;
    Stance now_;
    Stance planned_;
    std::array<Playing, MotionSlots> playing_{}; ///< of the front step, once it has begun
    std::array<std::uint64_t, MotionSlots> reached_{};
    bool hasBegun_ = false;
    bool run_ = false;
};

} // namespace harvlink::simulator
