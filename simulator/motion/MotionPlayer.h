#pragma once

#include <array>
#include <cstdint>

#include "simulator/arm/Workcell.h"
#include "simulator/motion/Pace.h"
#include "simulator/motion/TargetBuffer.h"

namespace harvlink::simulator {

/// Plays the buffered steps one after the other and knows the present positions. Every move starts and ends at
/// standstill, stays on its path and ends exactly at its target.
class MotionPlayer {
public:
    MotionPlayer(Workcell const& cell, ControlGroups const& groups);

    bool IsFull() const { return buffer_.IsFull(); }
    bool HasSteps() const { return !buffer_.IsEmpty(); }

    /// The present positions, and the positions after all steps.
    GroupPositions const& Now() const { return now_; }
    GroupPositions const& Planned() const { return planned_; }

    /// Adds a step at the end. Its moves start at Planned; there must be room.
    void Add(PlannedStep const& step);

    /// Plays, or stops all moves on their paths. The buffer is kept.
    void Run(bool run);

    /// Drops all moves of a slot. A move that is being played slows down and ends where it comes to a standstill.
    void Clear(std::size_t slot);

    void Advance(double seconds);

    /// Whether anything moves.
    bool IsMoving() const;

    /// The number of targets reached since the targets of the slot were last cleared, plus the completed fraction of
    /// the present move.
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
    AxisValues& At(GroupPositions& positions, std::size_t slot) const;

    Workcell const& cell_;
    ControlGroups const& groups_;
    TargetBuffer buffer_;
    GroupPositions now_;
    GroupPositions planned_;
    std::array<Playing, MotionSlots> playing_{}; ///< of the front step, once it has begun
    std::array<std::uint64_t, MotionSlots> reached_{};
    bool hasBegun_ = false;
    bool run_ = false;
};

} // namespace harvlink::simulator
