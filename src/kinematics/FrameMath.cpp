#include "harvlink/FrameMath.h"

#include <cmath>
#include <ostream>

// Built without contraction of products and sums, so that every machine gives the same results to the last bit.

namespace harvlink {
namespace {

constexpr double degree = 0.017453292519943295;

/// One column of first x R: the rotation of `frame` applied to (x, y, z).
struct Column {
    double x;
    double y;
    double z;
};

Column Rotate(EulerMatrix const& frame, double x, double y, double z) {
    return {
        frame.nx * x + frame.ox * y + frame.ax * z,
        frame.ny * x + frame.oy * y + frame.ay * z,
        frame.nz * x + frame.oz * y + frame.az * z,
    };
}

void SetRotation(EulerMatrix& out, Column const& n, Column const& o, Column const& a) {
    out.nx = n.x;
    out.ny = n.y;
    out.nz = n.z;
    out.ox = o.x;
    out.oy = o.y;
    out.oz = o.z;
    out.ax = a.x;
    out.ay = a.y;
    out.az = a.z;
}

void SetPosition(EulerMatrix& out, EulerMatrix const& frame, Column const& offset) {
    out.px = offset.x + frame.px;
    out.py = offset.y + frame.py;
    out.pz = offset.z + frame.pz;
}

} // namespace

void InvertFrame(EulerMatrix const* in, EulerMatrix* out) {
    SetRotation(*out, {in->nx, in->ox, in->ax}, {in->ny, in->oy, in->ay}, {in->nz, in->oz, in->az});
    out->px = -in->nx * in->px - in->ny * in->py - in->nz * in->pz;
    out->py = -in->ox * in->px - in->oy * in->py - in->oz * in->pz;
    out->pz = -in->ax * in->px - in->ay * in->py - in->az * in->pz;
}

void RotateFrame(EulerMatrix const* frame, XyzVector const* axis, EulerMatrix* out, double angle) {
    double const t = angle * degree;
    double const s = std::sin(t);
    double const c = std::cos(t);
    double const v = 1 - c;
    double const ux = axis->x;
    double const uy = axis->y;
    double const uz = axis->z;
    SetRotation(*out, Rotate(*frame, ux * ux * v + c, uy * ux * v + uz * s, ux * uz * v - uy * s),
                Rotate(*frame, ux * uy * v - uz * s, uy * uy * v + c, uy * uz * v + ux * s),
                Rotate(*frame, ux * uz * v + uy * s, uy * uz * v - ux * s, uz * uz * v + c));
    // The product by zero is carried out: a rotation part that is not finite shows in the position.
    SetPosition(*out, *frame, Rotate(*frame, 0.0, 0.0, 0.0));
}

void MultiplyFrames(EulerMatrix const* first, EulerMatrix const* second, EulerMatrix* out) {
    SetRotation(*out, Rotate(*first, second->nx, second->ny, second->nz),
                Rotate(*first, second->ox, second->oy, second->oz), Rotate(*first, second->ax, second->ay, second->az));
    SetPosition(*out, *first, Rotate(*first, second->px, second->py, second->pz));
}

void CrossProduct(XyzVector const* first, XyzVector const* second, XyzVector* out) {
    out->x = first->y * second->z - second->y * first->z;
    out->y = first->z * second->x - first->x * second->z;
    out->z = first->x * second->y - second->x * first->y;
}

void InnerProduct(XyzVector const* first, XyzVector const* second, double* out) {
    *out = first->z * second->z + (first->x * second->x + first->y * second->y);
}

void FrameToZYXeuler(EulerMatrix const* in, ZyxEulerPose* out) {
    double const rz = std::atan2(in->ny, in->nx);
    double const c = std::cos(rz);
    double const s = std::sin(rz);
    double const ry = std::atan2(-in->nz, in->ny * s + in->nx * c);
    double const rx = std::atan2(in->ax * s - in->ay * c, in->oy * c - in->ox * s);
    *out = {in->px, in->py, in->pz, rx / degree, ry / degree, rz / degree};
}

void ZYXeulerToFrame(ZyxEulerPose const* in, EulerMatrix* out) {
    double const cx = std::cos(in->rx * degree);
    double const sx = std::sin(in->rx * degree);
    double const cy = std::cos(in->ry * degree);
    double const sy = std::sin(in->ry * degree);
    double const cz = std::cos(in->rz * degree);
    double const sz = std::sin(in->rz * degree);
    SetRotation(*out, {cz * cy, sz * cy, -sy}, {sy * sx * cz - sz * cx, cz * cx + sz * sy * sx, sx * cy},
                {sz * sx + sy * cz * cx, sz * sy * cx - sx * cz, cy * cx});
    out->px = in->x;
    out->py = in->y;
    out->pz = in->z;
}

void SetIdentityMatrixInFrame(EulerMatrix* out) {
    *out = {.nx = 1.0, .oy = 1.0, .az = 1.0};
}

std::ostream& operator<<(std::ostream& stream, XyzVector const& vector) {
    return stream << "X: " << vector.x << "\nY: " << vector.y << "\nZ: " << vector.z;
}

std::ostream& operator<<(std::ostream& stream, EulerMatrix const& frame) {
    return stream << "nx: " << frame.nx << ", ox: " << frame.ox << ", ax: " << frame.ax << ", px: " << frame.px
                  << "\nny: " << frame.ny << ", oy: " << frame.oy << ", ay: " << frame.ay << ", py: " << frame.py
                  << "\nnz: " << frame.nz << ", oz: " << frame.oz << ", az: " << frame.az << ", pz: " << frame.pz;
}

} // namespace harvlink
