#pragma once

namespace harvlink::simulator {

/// The time of one move. It runs with the controller's time. To stop a move it slows down to a standstill, so the arm
/// stops on its path and can continue along it later.
class Pace {
public:
    /// The duration of the ramp from full pace to standstill, and of the ramp back.
    static constexpr double RampSeconds = 0.15;

    void Run(bool run) { run_ = run; }

    /// Lets `seconds` pass, but the time of the move not beyond `end`. Returns the seconds that were left at the end.
    double Advance(double seconds, double end);

    double Time() const { return time_; }
    bool IsHalted() const { return !run_ && rate_ <= 0.0; }

    /// The time of the move at which it would come to a standstill if it were stopped now.
    double TimeOfHalt() const { return time_ + 0.5 * rate_ * rate_ * RampSeconds; }

private:
    double AdvanceRamp(double seconds, double end);
    double SecondsTo(double way, double slope) const;

    double time_ = 0.0;
    double rate_ = 1.0; ///< seconds of the move per second
    bool run_ = true;
};

} // namespace harvlink::simulator
