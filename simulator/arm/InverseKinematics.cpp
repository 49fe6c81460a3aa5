#include "simulator/arm/InverseKinematics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "simulator/arm/ForwardKinematics.h"

namespace harvlink::simulator {
namespace {

constexpr std::size_t S = 0;
constexpr std::size_t L = 1;
constexpr std::size_t U = 2;
constexpr std::size_t R = 3;
constexpr std::size_t B = 4;
constexpr std::size_t T = 5;

// Below this sine of B (half of the angular resolution of the protocol) R and T turn about the same line.
constexpr double WristSingularity = 1e-6;
constexpr double ShoulderSingularity = 1e-6; // mm
// Other postures are tried only if the present one would turn an axis further than this, in degrees.
constexpr double SurelyNearest = 5.0;

double Atan2Degrees(double y, double x) {
    return std::atan2(y, x) / RadiansPerDegree;
}

bool IsFinite(Frame const& frame) {
    auto const& p = frame.position;
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z) &&
           std::ranges::all_of(frame.rotation.m, [](double value) { return std::isfinite(value); });
}

double SolveTurn(Vector3 const& wrist, bool back, double reference) {
    if (std::hypot(wrist.x, wrist.y) < ShoulderSingularity) {
        return PrincipalAngle(reference);
    }
    return PrincipalAngle(Atan2Degrees(wrist.y, wrist.x) + (back ? 180.0 : 0.0));
}

/// L and U from the wrist centre in the plane of the arm, as seen from the shoulder. False if it is out of reach.
bool SolveReach(ArmGeometry const& arm, double forward, double up, bool lower, ArmAngles& angles) {
    double const forearm = std::hypot(arm.forearm, arm.elbowOffset);
    double const forearmTilt = Atan2Degrees(arm.elbowOffset, arm.forearm);
    double const cosine = (forward * forward + up * up - arm.upperArm * arm.upperArm - forearm * forearm) /
                          (2.0 * arm.upperArm * forearm);
    if (!(std::abs(cosine) <= 1.0 + 1e-12)) {
        return false;
    }
    double const bend = (lower ? 1.0 : -1.0) * std::acos(std::clamp(cosine, -1.0, 1.0));
    double const rise =
        Atan2Degrees(up, forward) - Atan2Degrees(forearm * std::sin(bend), arm.upperArm + forearm * std::cos(bend));
    angles[L] = PrincipalAngle(90.0 - rise);
    angles[U] = 90.0 - forearmTilt + bend / RadiansPerDegree;
    return true;
}

/// R, B and T from the orientation of the hand against the forearm.
void SolveWrist(Rotation const& hand, bool noFlip, double referenceR, ArmAngles& angles) {
    double const sine = std::hypot(hand(1, 0), hand(2, 0));
    if (sine < WristSingularity) {
        angles[R] = PrincipalAngle(IsFlip(referenceR) == noFlip ? referenceR + 180.0 : referenceR);
        angles[B] = hand(0, 0) > 0.0 ? 0.0 : 180.0;
        angles[T] = PrincipalAngle(Atan2Degrees(hand(2, 1), hand(1, 1)) - angles[R]);
        return;
    }
    double const r = Atan2Degrees(-hand(1, 0), hand(2, 0));
    double const t = Atan2Degrees(-hand(0, 1), -hand(0, 2));
    double const b = Atan2Degrees(sine, hand(0, 0));
    bool const turnedOver = IsFlip(r) == noFlip;
    angles[R] = PrincipalAngle(turnedOver ? r + 180.0 : r);
    angles[B] = turnedOver ? -b : b;
    angles[T] = PrincipalAngle(turnedOver ? t + 180.0 : t);
}

/// The angles of the posture, without regard to turns beyond 180 degrees and to limits.
std::optional<ArmAngles> Solve(ArmGeometry const& arm, Frame const& flange, ArmFigure const& figure,
                               ArmAngles const& reference) {
    Vector3 const wrist = flange.position - arm.hand * flange.rotation.Column(2);
    ArmAngles angles{};
    angles[S] = SolveTurn(wrist, figure.back, reference[S]);
    double const forward = (figure.back ? -1.0 : 1.0) * std::hypot(wrist.x, wrist.y) - arm.shoulderOffset;
    if (!SolveReach(arm, forward, wrist.z - arm.shoulderHeight, figure.lower, angles)) {
        return std::nullopt;
    }
    Rotation const forearm = Rotation::AboutZ(angles[S]) * Rotation::AboutY(angles[L] - angles[U]);
    Rotation const hand = forearm.Inverse() * flange.rotation * FlangeMounting().Inverse();
    SolveWrist(hand, figure.noFlip, reference[R], angles);
    return angles;
}

double Beyond180(double angle) {
    return angle > 0.0 ? angle - 360.0 : angle + 360.0;
}

/// Of the two turns within the limits, the one nearest to `reference`.
double NearestTurn(double angle, AxisLimits const& limits, double reference) {
    double const other = Beyond180(angle);
    return limits.Contains(other) && std::abs(other - reference) < std::abs(angle - reference) ? other : angle;
}

double LargestStep(ArmAngles const& from, ArmAngles const& to) {
    double largest = 0.0;
    for (std::size_t i = 0; i < ArmAxes; ++i) {
        largest = std::max(largest, std::abs(to[i] - from[i]));
    }
    return largest;
}

std::optional<ArmAngles> NearestOfPosture(ArmGeometry const& arm, Frame const& flange, ArmFigure const& figure,
                                          ArmAngles const& reference) {
    auto angles = Solve(arm, flange, figure, reference);
    if (!angles) {
        return std::nullopt;
    }
    for (std::size_t const axis : {S, R, T}) {
        (*angles)[axis] = NearestTurn((*angles)[axis], arm.limits[axis], reference[axis]);
    }
    return WithinLimits(arm, *angles) ? angles : std::nullopt;
}

} // namespace

std::optional<ArmAngles> AnglesOf(ArmGeometry const& arm, Frame const& flange, ArmFigure const& figure,
                                  ArmAngles const& reference) {
    if (!IsFinite(flange)) {
        return std::nullopt;
    }
    auto angles = Solve(arm, flange, figure, reference);
    if (!angles) {
        return std::nullopt;
    }
    auto const turn = [&](std::size_t axis, bool beyond) {
        (*angles)[axis] = beyond ? Beyond180((*angles)[axis]) : (*angles)[axis];
    };
    turn(S, figure.sBeyond180);
    turn(R, figure.rBeyond180);
    turn(T, figure.tBeyond180);
    return WithinLimits(arm, *angles) ? angles : std::nullopt;
}

std::optional<ArmAngles> NearestAnglesOf(ArmGeometry const& arm, Frame const& flange, ArmAngles const& reference) {
    if (!IsFinite(flange)) {
        return std::nullopt;
    }
    auto nearest = NearestOfPosture(arm, flange, FigureOf(arm, reference), reference);
    if (nearest && LargestStep(reference, *nearest) < SurelyNearest) {
        return nearest;
    }
    for (std::uint32_t posture = 0; posture < 8; ++posture) {
        auto const angles = NearestOfPosture(arm, flange, ArmFigure::FromWord(posture), reference);
        if (angles && (!nearest || LargestStep(reference, *angles) < LargestStep(reference, *nearest))) {
            nearest = angles;
        }
    }
    return nearest;
}

} // namespace harvlink::simulator
