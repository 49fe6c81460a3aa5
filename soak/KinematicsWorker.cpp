#include "soak/KinematicsWorker.h"

#include <array>
#include <cmath>

#include <fmt/format.h>

namespace harvlink::soak {

namespace {

using enum KinematicConversions;

constexpr double AngleTolerance = 0.002; ///< degrees: the wire's 0.0001, through the arm's geometry
constexpr double PulseTolerance = 5.0;

/// The words of a reply in their order: type, numbers, figure, axes.
WireImage ConversionImage(PositionData const& position) {
    auto const image = ImageOfPosition(position);
    auto const word = [&](std::size_t i) { return ValueAt<std::int32_t>(image, i * sizeof(std::int32_t)); };
    auto ordered = ImageOf(static_cast<std::int16_t>(position.userCoordinateNumber));
    Append(ordered, static_cast<std::int16_t>(position.toolNumber));
    Append(ordered, word(1));
    ordered.insert(ordered.end(), image.begin() + 5 * sizeof(std::int32_t), image.end());
    return ordered;
}

} // namespace

PositionData KinematicsWorker::RandomAngles() {
    // Within the limits of the arm and away from its singularities, where the conversion back is not unique.
    constexpr std::array<std::array<double, 2>, 6> ranges{
        {{-150, 150}, {-20, 60}, {-40, 40}, {-60, 60}, {-110, -30}, {-150, 150}}};
    PositionData position{.coordinateType = CoordinateType::JointAngle};
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        auto const units = std::uniform_int_distribution<int>(static_cast<int>(ranges[i][0] * 10000),
                                                              static_cast<int>(ranges[i][1] * 10000))(random_);
        position.axes[i] = units / 10000.0;
    }
    return position;
}

void KinematicsWorker::Step() {
    auto const angles = RandomAngles();
    PositionData cartesian;
    PositionData pulses;
    PositionData back;
    if (!Convert(angles, JointAngleToCartesianPos, cartesian) || !Convert(angles, JointAngleToPulse, pulses)) {
        return;
    }
    if (ConvertFromCartesian(cartesian, CartesianPosToJointAngle, back)) {
        Compare("joint angles by way of a pose", angles, back, AngleTolerance);
    }
    if (Convert(pulses, PulseToJointAngle, back)) {
        Compare("joint angles by way of pulses", angles, back, AngleTolerance);
    }
    if (Convert(pulses, PulseToCartesianPos, back)) {
        Compare("pose from pulses", cartesian, back, 0.05);
    }
    if (ConvertFromCartesian(cartesian, CartesianPosToPulse, back)) {
        Compare("pulses from a pose", pulses, back, PulseTolerance);
    }
}

bool KinematicsWorker::Convert(PositionData const& from, KinematicConversions conversion, PositionData& result) {
    auto source = from;
    PositionData got;
    auto const image = ReadUntilAgreed(fmt::format("conversion {}", static_cast<int>(conversion)), [&](WireImage& out) {
        auto status =
            Done(Family::Kinematics, kinematics_.ConvertPosition(ControlGroupId::R1, source, conversion, got));
        out = ConversionImage(got);
        return status;
    });
    result = got;
    return !image.empty();
}

bool KinematicsWorker::ConvertFromCartesian(PositionData const& from, KinematicConversions conversion,
                                            PositionData& result) {
    auto source = from;
    PositionData got;
    auto const image = ReadUntilAgreed(fmt::format("conversion {}", static_cast<int>(conversion)), [&](WireImage& out) {
        auto status =
            Done(Family::Kinematics, kinematics_.ConvertPositionFromCartesian(ControlGroupId::R1, source, conversion,
                                                                              KinematicType::KinematicFigure, {}, got));
        out = ConversionImage(got);
        return status;
    });
    result = got;
    return !image.empty();
}

void KinematicsWorker::Compare(std::string const& what, PositionData const& one, PositionData const& other,
                               double tolerance) {
    for (std::size_t i = 0; i < one.axes.size(); ++i) {
        double const difference = one.axes[i] - other.axes[i];
        bool const isTurn = i >= 3 && one.coordinateType != CoordinateType::Pulse;
        if (!(std::abs(isTurn ? std::remainder(difference, 360.0) : difference) <= tolerance)) {
            Fail(fmt::format("{}: axis {} is {}, and {} after converting back", what, i, one.axes[i], other.axes[i]));
            return;
        }
    }
}

} // namespace harvlink::soak
