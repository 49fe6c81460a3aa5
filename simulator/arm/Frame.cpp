#include "simulator/arm/Frame.h"

#include <algorithm>
#include <cmath>

namespace harvlink::simulator {

Vector3 operator+(Vector3 const& a, Vector3 const& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

Vector3 operator-(Vector3 const& a, Vector3 const& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

Vector3 operator*(double factor, Vector3 const& vector) {
    return {factor * vector.x, factor * vector.y, factor * vector.z};
}

double Dot(Vector3 const& a, Vector3 const& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vector3 Cross(Vector3 const& a, Vector3 const& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

double Norm(Vector3 const& vector) {
    return std::sqrt(Dot(vector, vector));
}

Rotation Rotation::Inverse() const {
    return {{m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]}};
}

Rotation Rotation::AboutX(double degrees) {
    return About({1.0, 0.0, 0.0}, degrees);
}

Rotation Rotation::AboutY(double degrees) {
    return About({0.0, 1.0, 0.0}, degrees);
}

Rotation Rotation::AboutZ(double degrees) {
    return About({0.0, 0.0, 1.0}, degrees);
}

Rotation Rotation::About(Vector3 const& axis, double degrees) {
    double const s = std::sin(degrees * RadiansPerDegree);
    double const c = std::cos(degrees * RadiansPerDegree);
    double const v = 1.0 - c;
    auto const& [x, y, z] = axis;
    return {{x * x * v + c, x * y * v - z * s, x * z * v + y * s, //
             y * x * v + z * s, y * y * v + c, y * z * v - x * s, //
             z * x * v - y * s, z * y * v + x * s, z * z * v + c}}; //
}

Rotation operator*(Rotation const& a, Rotation const& b) {
    Rotation product;
    for (unsigned row = 0; row < 3; ++row) {
        for (unsigned column = 0; column < 3; ++column) {
            product.m[3 * row + column] =
                a.m[3 * row] * b.m[column] + a.m[3 * row + 1] * b.m[column + 3] + a.m[3 * row + 2] * b.m[column + 6];
        }
    }
    return product;
}

Vector3 operator*(Rotation const& rotation, Vector3 const& vector) {
    auto const& m = rotation.m;
    return {m[0] * vector.x + m[1] * vector.y + m[2] * vector.z, m[3] * vector.x + m[4] * vector.y + m[5] * vector.z,
            m[6] * vector.x + m[7] * vector.y + m[8] * vector.z};
}

namespace {

/// Takes the axis from the symmetric part of the matrix, which stays precise up to 180 degrees.
Vector3 AxisOfLargeTurn(Rotation const& r, double cosine, Vector3 const& skew) {
    int largest = r(0, 0) > r(1, 1) ? 0 : 1;
    largest = r(2, 2) > r(largest, largest) ? 2 : largest;
    Vector3 axis{0.5 * (r(0, largest) + r(largest, 0)), 0.5 * (r(1, largest) + r(largest, 1)),
                 0.5 * (r(2, largest) + r(largest, 2))};
    (largest == 0 ? axis.x : largest == 1 ? axis.y : axis.z) -= cosine;
    double const length = Norm(axis);
    if (!(length > 0.0)) {
        return {1.0, 0.0, 0.0};
    }
    return (Dot(axis, skew) < 0.0 ? -1.0 / length : 1.0 / length) * axis;
}

} // namespace

AxisAndAngle ToAxisAndAngle(Rotation const& r) {
    Vector3 const skew{r(2, 1) - r(1, 2), r(0, 2) - r(2, 0), r(1, 0) - r(0, 1)};
    double const sine = 0.5 * Norm(skew);
    double const cosine = 0.5 * (r(0, 0) + r(1, 1) + r(2, 2) - 1.0);
    double const degrees = std::atan2(sine, cosine) / RadiansPerDegree;
    if (cosine < 0.0) {
        return {AxisOfLargeTurn(r, std::max(cosine, -1.0), skew), degrees};
    }
    return sine > 0.0 ? AxisAndAngle{(0.5 / sine) * skew, degrees} : AxisAndAngle{};
}

Frame Frame::Inverse() const {
    Rotation const inverse = rotation.Inverse();
    return {inverse, -1.0 * (inverse * position)};
}

Frame operator*(Frame const& a, Frame const& b) {
    return {a.rotation * b.rotation, a.rotation * b.position + a.position};
}

Frame FrameOfPose(Pose const& pose) {
    return {Rotation::AboutZ(pose[5]) * Rotation::AboutY(pose[4]) * Rotation::AboutX(pose[3]),
            {pose[0], pose[1], pose[2]}};
}

Pose PoseOfFrame(Frame const& frame) {
    Rotation const& r = frame.rotation;
    double const horizontal = std::hypot(r(0, 0), r(1, 0));
    bool const isGimbal = horizontal < 1e-9;
    double const rz = isGimbal ? 0.0 : std::atan2(r(1, 0), r(0, 0));
    double const ry = std::atan2(-r(2, 0), horizontal);
    double const rx = isGimbal ? std::atan2(-r(1, 2), r(1, 1)) : std::atan2(r(2, 1), r(2, 2));
    return {frame.position.x,      frame.position.y,      frame.position.z,
            rx / RadiansPerDegree, ry / RadiansPerDegree, rz / RadiansPerDegree};
}

} // namespace harvlink::simulator
