#pragma once

#include <cstdint>

#include "simulator/arm/ArmGeometry.h"

namespace harvlink::simulator {

/// Which of the arm's postures with the same pose is meant. All false is the natural one: the wrist in front of the S
/// axis, the elbow bent down, the wrist not turned over.
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

/// Into -180 (excluded) to 180 (included), an angle that rounding has put next to -180 to 180. 0 for what is not finite.
double PrincipalAngle(double degrees);

/// Whether the wrist is flipped with this R.
bool IsFlip(double degrees);

} // namespace harvlink::simulator
