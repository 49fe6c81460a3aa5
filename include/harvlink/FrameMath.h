#pragma once

#include <iosfwd>

#include "harvlink/Export.h"

/// @file
/// Arithmetic on frames and vectors, without a connection. All functions are pure and may run on any thread. No pointer
/// may be null, and no output may be the same record as an input; nothing checks this.

namespace harvlink {

/// A vector, in any unit.
struct XyzVector {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

/// A homogeneous frame, column by column: the rotation's columns n, o, a, then the position p.
struct EulerMatrix {
    double nx = 0.0;
    double ny = 0.0;
    double nz = 0.0;
    double ox = 0.0;
    double oy = 0.0;
    double oz = 0.0;
    double ax = 0.0;
    double ay = 0.0;
    double az = 0.0;
    double px = 0.0;
    double py = 0.0;
    double pz = 0.0;
};

/// A pose; the rotation is Rz(rz) Ry(ry) Rx(rx), in degrees. The position has the unit of the frame.
struct ZyxEulerPose {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    double rx = 0.0;
    double ry = 0.0;
    double rz = 0.0;
};

extern "C" {

/// The inverse of a rigid frame; the rotation is taken to be orthonormal.
HARVLINK_EXPORT void InvertFrame(EulerMatrix const* in, EulerMatrix* out);

/// Rotates a frame by `angle` degrees, right-handed, about `axis` through its own origin, given in its own coordinates.
/// The axis is not normalised: with one that is not of unit length the result is not a rotation.
HARVLINK_EXPORT void RotateFrame(EulerMatrix const* frame, XyzVector const* axis, EulerMatrix* out, double angle);

/// The matrix product, first x second.
HARVLINK_EXPORT void MultiplyFrames(EulerMatrix const* first, EulerMatrix const* second, EulerMatrix* out);

/// The vector product, first x second.
HARVLINK_EXPORT void CrossProduct(XyzVector const* first, XyzVector const* second, XyzVector* out);
/// The scalar product: the sum of the products of the components.
HARVLINK_EXPORT void InnerProduct(XyzVector const* first, XyzVector const* second, double* out);

/// rx and rz from -180 to 180 degrees, ry from -90 to 90. In the gimbal position rz is 0 if nx and ny are exactly 0.
HARVLINK_EXPORT void FrameToZYXeuler(EulerMatrix const* in, ZyxEulerPose* out);
/// The frame of a pose, the inverse of FrameToZYXeuler. The angles, in degrees, may be of any size.
HARVLINK_EXPORT void ZYXeulerToFrame(ZyxEulerPose const* in, EulerMatrix* out);

/// Makes `out` the identity: no rotation and no translation.
HARVLINK_EXPORT void SetIdentityMatrixInFrame(EulerMatrix* out);

} // extern "C"

/// Text forms, three lines each, without a line end at the close.
/// @{
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, XyzVector const& vector);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, EulerMatrix const& frame);
/// @}

} // namespace harvlink
