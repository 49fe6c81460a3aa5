#include "simulator/arm/ArmFigure.h"

#include <cmath>

#include "simulator/arm/Frame.h"

namespace harvlink::simulator {
namespace {

// A computed angle and a given one must fall on the same side of a limit.
constexpr double Rounding = 1e-9;

bool IsBeyond180(double degrees) {
    return degrees <= -180.0 + Rounding || degrees > 180.0 + Rounding;
}

} // namespace

ArmFigure ArmFigure::FromWord(std::uint32_t word) {
    auto const bit = [word](unsigned number) { return ((word >> number) & 1U) != 0; };
    return {bit(0), bit(1), bit(2), bit(3), bit(4), bit(5)};
}

std::uint32_t ArmFigure::Word() const {
    return (back ? 1U : 0U) | (lower ? 2U : 0U) | (noFlip ? 4U : 0U) | (rBeyond180 ? 8U : 0U) |
           (tBeyond180 ? 16U : 0U) | (sBeyond180 ? 32U : 0U);
}

double PrincipalAngle(double degrees) {
    if (!std::isfinite(degrees)) {
        return 0.0;
    }
    double const angle = std::remainder(degrees, 360.0);
    return angle <= -180.0 + Rounding ? angle + 360.0 : angle;
}

bool IsFlip(double degrees) {
    double const angle = PrincipalAngle(degrees);
    return angle > -90.0 + Rounding && angle <= 90.0 + Rounding;
}

ArmFigure FigureOf(ArmGeometry const& arm, ArmAngles const& angles) {
    auto const& [s, l, u, r, b, t] = angles;
    double const forearmAngle = (u - l) * RadiansPerDegree;
    double const reach = arm.shoulderOffset + arm.upperArm * std::sin(l * RadiansPerDegree) +
                         arm.forearm * std::cos(forearmAngle) - arm.elbowOffset * std::sin(forearmAngle);
    double const stretchedElbow = 90.0 - std::atan2(arm.elbowOffset, arm.forearm) / RadiansPerDegree;
    return {reach<0.0, u> stretchedElbow, !IsFlip(r), IsBeyond180(r), IsBeyond180(t), IsBeyond180(s)};
}

} // namespace harvlink::simulator
