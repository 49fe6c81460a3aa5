#pragma once

namespace harvlink::simulator {

/// Speed over time of a move from standstill to standstill: up at constant acceleration, on at constant speed, down. A
/// way too short for the full speed has no middle part.
class SpeedProfile {
public:
    SpeedProfile() = default;

    /// All in one unit of length, which the caller chooses, and seconds. A length that isn't above 0 takes no time; the
    /// other arguments are above 0.
    SpeedProfile(double length, double speed, double acceleration, double deceleration);

    double Length() const { return length_; }
    double Duration() const { return rampUp_ + cruise_ + rampDown_; }

    /// From 0 to Length, which it is exactly at Duration and later.
    double DistanceAt(double seconds) const;

    /// DistanceAt as a part of the whole, 0 to 1.
    double FractionAt(double seconds) const;

private:
    double length_ = 0.0;
    double peak_ = 0.0;
    double rampUp_ = 0.0;
    double cruise_ = 0.0;
    double rampDown_ = 0.0;
};

} // namespace harvlink::simulator
