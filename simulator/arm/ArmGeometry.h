#pragma once

#include <array>
#include <cstddef>

namespace harvlink::simulator {

inline constexpr std::size_t ArmAxes = 6;

/// S, L, U, R, B, T in degrees.
using ArmAngles = std::array<double, ArmAxes>;

struct AxisLimits {
    double lowest = 0.0;
    double highest = 0.0;

    /// Allows for rounding at the limit. False for NaN.
    bool Contains(double value) const { return value >= lowest - 1e-9 && value <= highest + 1e-9; }
};

/// A six-axis arm with a spherical wrist. With all angles 0 the upper arm stands upright, the forearm and the wrist point
/// forward (X); the flange's Z then looks forward and its X up, so that a wrist bent down by B = -90 gives Rx = 180.
///
/// | axis | turns about | positive |
/// |---|---|---|
/// | S | the vertical through the foot | to the left |
/// | L | the shoulder | leans forward |
/// | U | the elbow, against the upper arm | lifts the forearm |
/// | R | the forearm | right-handed about its forward direction |
/// | B | the wrist | lifts the hand |
/// | T | the flange | right-handed about its normal |
///
/// The robot's origin lies where the S axis meets the mounting face, Z up.
struct ArmGeometry {
    double shoulderHeight = 450.0; ///< mounting face to L axis, in mm like the other lengths
    double shoulderOffset = 150.0; ///< S axis to L axis, forward
    double upperArm = 600.0; ///< L axis to U axis
    double elbowOffset = 100.0; ///< U axis to R axis, across the forearm
    double forearm = 640.0; ///< U axis to wrist centre, along the forearm
    double hand = 100.0; ///< wrist centre to flange

    std::array<AxisLimits, ArmAxes> limits{
        {{-190.0, 190.0}, {-95.0, 155.0}, {-85.0, 175.0}, {-205.0, 205.0}, {-135.0, 135.0}, {-355.0, 355.0}}};
    ArmAngles maximumSpeed{230.0, 200.0, 230.0, 430.0, 430.0, 630.0}; ///< degrees per second
    ArmAngles pulsesPerDegree{1820.0, 1820.0, 1706.0, 1365.0, 1365.0, 910.0};
};

inline constexpr ArmGeometry StandardArm{};

/// The position of a new arm: away from every singularity, the flange pointing down.
inline constexpr ArmAngles HomeAngles{0.0, 0.0, 0.0, 0.0, -90.0, 0.0};

bool WithinLimits(ArmGeometry const& arm, ArmAngles const& angles);

} // namespace harvlink::simulator
