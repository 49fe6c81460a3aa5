#include "simulator/motion/MotionPlayer.h"

#include <algorithm>

namespace harvlink::simulator {

MotionPlayer::MotionPlayer(Workcell const& cell, ControlGroups const& groups)
    : cell_(cell), groups_(groups), now_(cell.Home()), planned_(now_) {}

AxisValues& MotionPlayer::At(GroupPositions& positions, std::size_t slot) const {
    return positions[cell_.Index(*groups_.Slot(slot))];
}

void MotionPlayer::Add(PlannedStep const& step) {
    if (step.IsEmpty()) {
        return;
    }
    buffer_.Push(step);
    for (std::size_t slot = 0; slot < MotionSlots; ++slot) {
        if (step.moves[slot]) {
            At(planned_, slot) = step.moves[slot]->path.To();
        }
    }
}

void MotionPlayer::Run(bool run) {
    run_ = run;
    for (Playing& playing : playing_) {
        playing.pace.Run(run && !playing.isAbandoned);
    }
}

void MotionPlayer::Clear(std::size_t slot) {
    reached_[slot] = 0;
    buffer_.RemoveSlot(slot, hasBegun_ ? 1 : 0);
    if (groups_.Slot(slot) == nullptr) {
        return;
    }
    Playing const& playing = playing_[slot];
    if (playing.isActive && !playing.isAbandoned) {
        Abandon(slot);
    }
    At(planned_, slot) = playing.isActive ? playing.halt : At(now_, slot);
    Advance(0.0);
}

void MotionPlayer::Abandon(std::size_t slot) {
    Playing& playing = playing_[slot];
    PlannedMove const& move = *buffer_[0].moves[slot];
    double const fraction = move.profile.FractionAt(playing.pace.TimeOfHalt());
    playing.halt = move.path.Follow(At(now_, slot), playing.fraction, fraction);
    playing.isAbandoned = true;
    playing.pace.Run(false);
}

void MotionPlayer::Advance(double seconds) {
    for (std::size_t steps = 0; steps <= TargetBuffer::Capacity; ++steps) {
        if (!PlayFront(seconds)) {
            return;
        }
    }
}

/// Plays the front step and subtracts the time it needs from `seconds`. Returns whether the step has ended.
bool MotionPlayer::PlayFront(double& seconds) {
    if (buffer_.IsEmpty() || (!hasBegun_ && !run_)) {
        return false;
    }
    if (!hasBegun_) {
        BeginFront();
    }
    double left = seconds;
    bool hasEnded = true;
    for (std::size_t slot = 0; slot < MotionSlots; ++slot) {
        if (playing_[slot].isActive) {
            left = std::min(left, AdvanceMove(slot, seconds));
            hasEnded = hasEnded && !playing_[slot].isActive;
        }
    }
    if (hasEnded) {
        seconds = left;
        hasBegun_ = false;
        buffer_.PopFront();
    }
    return hasEnded;
}

void MotionPlayer::BeginFront() {
    for (std::size_t slot = 0; slot < MotionSlots; ++slot) {
        playing_[slot] = Playing{};
        playing_[slot].isActive = buffer_[0].moves[slot].has_value();
    }
    hasBegun_ = true;
}

/// Returns the seconds that are left after the end of the move.
double MotionPlayer::AdvanceMove(std::size_t slot, double seconds) {
    Playing& playing = playing_[slot];
    PlannedMove const& move = *buffer_[0].moves[slot];
    AxisValues& at = At(now_, slot);
    double const left = playing.pace.Advance(seconds, move.profile.Duration());
    bool const isAtEnd = playing.pace.Time() >= move.profile.Duration();
    if (playing.isAbandoned && (isAtEnd || playing.pace.IsHalted())) {
        at = playing.halt;
        playing.isActive = false;
    } else if (isAtEnd) {
        at = move.path.To();
        playing.isActive = false;
        ++reached_[slot];
    } else {
        double const fraction = move.profile.FractionAt(playing.pace.Time());
        at = move.path.Follow(at, playing.fraction, fraction);
        playing.fraction = fraction;
    }
    return left;
}

bool MotionPlayer::IsMoving() const {
    if (!hasBegun_) {
        return run_ && HasSteps();
    }
    return std::ranges::any_of(playing_, [](Playing const& playing) {
        return playing.isActive && (playing.isAbandoned || !playing.pace.IsHalted());
    });
}

double MotionPlayer::Progress(std::size_t slot) const {
    Playing const& playing = playing_[slot];
    bool const isUnderWay = hasBegun_ && playing.isActive && !playing.isAbandoned;
    return static_cast<double>(reached_[slot]) + (isUnderWay ? playing.fraction : 0.0);
}

} // namespace harvlink::simulator
