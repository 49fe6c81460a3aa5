#include "simulator/motion/CartesianPath.h"

#include <cmath>

namespace harvlink::simulator {
namespace {

// Sine of the angle at the start below which three points count as lying on one line.
constexpr double StraightSine = 1e-9;

/// From 0 to 360, about an axis of unit length.
double AngleBetween(Vector3 const& from, Vector3 const& to, Vector3 const& axis) {
    double const degrees = std::atan2(Dot(Cross(from, to), axis), Dot(from, to)) / RadiansPerDegree;
    return degrees < 0.0 ? degrees + 360.0 : degrees;
}

} // namespace

Turn::Turn(Rotation const& from, Rotation const& to) : from_(from), turn_(ToAxisAndAngle(from.Inverse() * to)) {}

Rotation Turn::At(double fraction) const {
    return from_ * Rotation::About(turn_.axis, turn_.degrees * fraction);
}

CartesianPath CartesianPath::Line(Frame const& from, Frame const& to) {
    CartesianPath path;
    path.start_ = from.position;
    path.span_ = to.position - from.position;
    path.length_ = Norm(path.span_);
    path.first_ = Turn(from.rotation, to.rotation);
    path.second_ = Turn(to.rotation, to.rotation);
    return path;
}

std::optional<CartesianPath> CartesianPath::Arc(Frame const& from, Frame const& through, Frame const& to) {
    CartesianPath path;
    path.start_ = from.position;
    Vector3 const toThrough = through.position - from.position;
    Vector3 const toEnd = to.position - from.position;
    if (!path.BendThrough(toThrough, toEnd)) {
        if (!(Dot(toThrough, to.position - through.position) > 0.0)) {
            return std::nullopt;
        }
        path.span_ = toEnd;
        path.length_ = Norm(toEnd);
        path.fractionThrough_ = Norm(toThrough) / path.length_;
    }
    path.first_ = Turn(from.rotation, through.rotation);
    path.second_ = Turn(through.rotation, to.rotation);
    return path;
}

bool CartesianPath::BendThrough(Vector3 const& toThrough, Vector3 const& toEnd) {
    Vector3 const normal = Cross(toThrough, toEnd);
    double const size = Norm(normal);
    if (!(size > StraightSine * Norm(toThrough) * Norm(toEnd))) {
        return false;
    }
    axis_ = (1.0 / size) * normal;
    Vector3 const toCentre = (0.5 / (size * size)) * (Dot(toEnd, toEnd) * Cross(normal, toThrough) -
                                                      Dot(toThrough, toThrough) * Cross(normal, toEnd));
    radius_ = -1.0 * toCentre;
    arcDegrees_ = AngleBetween(radius_, radius_ + toEnd, axis_);
    length_ = Norm(radius_) * arcDegrees_ * RadiansPerDegree;
    fractionThrough_ = AngleBetween(radius_, radius_ + toThrough, axis_) / arcDegrees_;
    return true;
}

Vector3 CartesianPath::PositionAt(double fraction) const {
    if (arcDegrees_ == 0.0) {
        return start_ + fraction * span_;
    }
    return start_ - radius_ + Rotation::About(axis_, arcDegrees_ * fraction) * radius_;
}

Frame CartesianPath::At(double fraction) const {
    bool const isSecond = fraction > fractionThrough_;
    Rotation const rotation = isSecond ? second_.At((fraction - fractionThrough_) / (1.0 - fractionThrough_))
                                       : first_.At(fraction / fractionThrough_);
    return {rotation, PositionAt(fraction)};
}

} // namespace harvlink::simulator
