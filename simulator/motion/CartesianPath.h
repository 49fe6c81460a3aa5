#pragma once

#include <optional>

#include "simulator/arm/Frame.h"

namespace harvlink::simulator {

/// One turn of constant speed from one orientation to another.
class Turn {
public:
    Turn() = default;
    Turn(Rotation const& from, Rotation const& to);

    double Degrees() const { return turn_.degrees; }
    Rotation At(double fraction) const;

private:
    Rotation from_{};
    AxisAndAngle turn_{};
};

/// The way of a tool's tip from one frame to another: straight, or through a third frame on an arc. A fraction from 0 to
/// 1 stands for the same part of the way's length.
class CartesianPath {
public:
    CartesianPath() = default;

    static CartesianPath Line(Frame const& from, Frame const& to);

    /// Three points on one line make a straight way if `through` lies between the others. Nothing if they make neither an
    /// arc nor that, as when two of them coincide.
    static std::optional<CartesianPath> Arc(Frame const& from, Frame const& through, Frame const& to);

    Frame At(double fraction) const;
    double Length() const { return length_; } ///< mm
    double Degrees() const { return first_.Degrees() + second_.Degrees(); } ///< of the orientation

private:
    bool BendThrough(Vector3 const& toThrough, Vector3 const& toEnd);
    Vector3 PositionAt(double fraction) const;

    Vector3 start_{};
    Vector3 span_{}; ///< of a straight way
    Vector3 radius_{}; ///< from the centre to the start
    Vector3 axis_{};
    double arcDegrees_ = 0.0; ///< 0 if the way is straight
    double length_ = 0.0;
    double fractionThrough_ = 1.0; ///< where the second of the two turns begins
    Turn first_{};
    Turn second_{};
};

} // namespace harvlink::simulator
