#pragma once

#include <cstdint>

#include "simulator/arm/ArmGeometry.h"

namespace harvlink::simulator {

/// Selects one of the postures of the arm that have the same pose. All false is the normal one: the wrist in front of
/// the S axis, the elbow bent down, the wrist not turned over.
struct ArmFigure {
    bool back = false; ///< the wrist centre lies behind the S axis
    bool lower = false; ///< the forearm is lifted beyond the line of the upper arm
    bool noFlip = false; ///< R, taken modulo 360, lies outside -90 (excluded) to 90 (included)
    bool rBeyond180 = false; ///< R is outside -180 (excluded) to 180 (included); S and T likewise
    bool tBeyond180 = false;
    bool sBeyond180 = false;

    bool operator==(ArmFigure const&) const = default;

    /// From bits 0 to 5 of the wire's figure word; others are ignored.
    static ArmFigure FromWord(std::uint32_t word);
    std::uint32_t Word() const;
};

ArmFigure FigureOf(ArmGeometry const& arm, ArmAngles const& angles);

/// Brings an angle into -180 (excluded) to 180 (included). An angle that rounding has put next to -180 becomes 180. 0
/// if the angle is not finite.
double PrincipalAngle(double degrees);

/// Whether the wrist is flipped with this R.
bool IsFlip(double degrees);

} // namespace harvlink::simulator
