#pragma once

#include <optional>

#include "simulator/arm/Frame.h"

namespace harvlink::simulator {

/// A turn at constant speed from one orientation to another.
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

/// The path of a tool tip from one frame to another: a straight line, or an arc through a third frame. A fraction from
/// 0 to 1 is that part of the length of the path.
class CartesianPath {
public:
    CartesianPath() = default;

    static CartesianPath Line(Frame const& from, Frame const& to);

    /// Three points on one line give a straight path if `through` lies between the others. Nothing if they give neither
    /// an arc nor a line, for example if two of them coincide.
    static std::optional<CartesianPath> Arc(Frame const& from, Frame const& through, Frame const& to);

    Frame At(double fraction) const;
    double Length() const { return length_; } ///< mm
    double Degrees() const { return first_.Degrees() + second_.Degrees(); } ///< of the orientation

private:
    bool BendThrough(Vector3 const& toThrough, Vector3 const& toEnd);
    Vector3 PositionAt(double fraction) const;

    Vector3 start_{};
    Vector3 span_{}; ///< of a straight path
    Vector3 radius_{}; ///< from the centre to the start
    Vector3 axis_{};
    double arcDegrees_ = 0.0; ///< 0 if the path is straight
    double length_ = 0.0;
    double fractionThrough_ = 1.0; ///< where the second of the two turns begins
    Turn first_{};
    Turn second_{};
};

} // namespace harvlink::simulator
