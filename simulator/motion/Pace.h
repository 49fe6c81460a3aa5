#pragma once

namespace harvlink::simulator {

/// The own time of one move. It runs with the controller's time, and slows down to a standstill when the move has to
/// stop: the arm then halts on its path, and goes on along it later.
class Pace {
public:
    /// How long it takes from full pace to a standstill and back.
    static constexpr double RampSeconds = 0.15;

    void Run(bool run) { run_ = run; }

    /// Lets `seconds` pass, but not the own time beyond `end`. Returns the seconds that were not needed to get there.
    double Advance(double seconds, double end);

    double Time() const { return time_; }
    bool IsHalted() const { return !run_ && rate_ <= 0.0; }

    /// The own time at which the move comes to a standstill if it is stopped now.
    double TimeOfHalt() const { return time_ + 0.5 * rate_ * rate_ * RampSeconds; }

private:
    double AdvanceRamp(double seconds, double end);
    double SecondsTo(double way, double slope) const;

    double time_ = 0.0;
    double rate_ = 1.0; ///< own seconds per second
    bool run_ = true;
};

} // namespace harvlink::simulator
