#pragma once

namespace harvlink::simulator {

/// The speed of a move over time: constant acceleration, constant speed, constant deceleration. A path too short for
/// the full speed has no part at constant speed.
class SpeedProfile {
public:
    SpeedProfile() = default;

    /// The caller chooses the unit of length; times are in seconds. A length of 0 or less takes no time. The other
    /// arguments must be above 0.
    SpeedProfile(double length, double speed, double acceleration, double deceleration);

    double Length() const { return length_; }
    double Duration() const { return rampUp_ + cruise_ + rampDown_; }

    /// From 0 to Length. Exactly Length at Duration and later.
    double DistanceAt(double seconds) const;

    /// DistanceAt as a fraction of the length, 0 to 1.
    double FractionAt(double seconds) const;

private:
    double length_ = 0.0;
    double peak_ = 0.0;
    double rampUp_ = 0.0;
    double cruise_ = 0.0;
    double rampDown_ = 0.0;
};

} // namespace harvlink::simulator
