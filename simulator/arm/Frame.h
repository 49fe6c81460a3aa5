#pragma once

#include <array>

namespace harvlink::simulator {

struct Vector3 {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

Vector3 operator+(Vector3 const& a, Vector3 const& b);
Vector3 operator-(Vector3 const& a, Vector3 const& b);
Vector3 operator*(double factor, Vector3 const& vector);
double Dot(Vector3 const& a, Vector3 const& b);
Vector3 Cross(Vector3 const& a, Vector3 const& b);
double Norm(Vector3 const& vector);

/// A 3 x 3 rotation, row by row.
struct Rotation {
    std::array<double, 9> m{1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0};

    double operator()(int row, int column) const { return m[static_cast<unsigned>(3 * row + column)]; }
    Vector3 Column(int column) const { return {(*this)(0, column), (*this)(1, column), (*this)(2, column)}; }
    Rotation Inverse() const;

    static Rotation AboutX(double degrees);
    static Rotation AboutY(double degrees);
    static Rotation AboutZ(double degrees);
    /// `axis` is of unit length.
    static Rotation About(Vector3 const& axis, double degrees);
};

Rotation operator*(Rotation const& a, Rotation const& b);
Vector3 operator*(Rotation const& rotation, Vector3 const& vector);

struct AxisAndAngle {
    Vector3 axis{1.0, 0.0, 0.0};
    double degrees = 0.0; ///< 0 to 180
};

/// The single turn that is equal to a rotation.
AxisAndAngle ToAxisAndAngle(Rotation const& rotation);

/// A rigid frame. The virtual controller doesn't use the frame functions of the library, because it helps to test them.
struct Frame {
    Rotation rotation{};
    Vector3 position{};

    Frame Inverse() const;
};

Frame operator*(Frame const& a, Frame const& b);

inline Frame Translation(double x, double y, double z) {
    return {{}, {x, y, z}};
}

/// X, Y, Z in millimetres and Rx, Ry, Rz in degrees; the rotation is Rz Ry Rx.
using Pose = std::array<double, 6>;

Frame FrameOfPose(Pose const& pose);

/// In gimbal lock, where only the sum of two angles is determined, Rz is 0.
Pose PoseOfFrame(Frame const& frame);

inline constexpr double RadiansPerDegree = 0.017453292519943295;

} // namespace harvlink::simulator
