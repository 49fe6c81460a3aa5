#include "harvlink/FrameMath.h"

#include <cmath>
#include <cstring>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

namespace harvlink::test {
namespace {

constexpr double degree = 0.017453292519943295;
using Matrix = std::array<std::array<double, 4>, 3>; // by rows

Matrix Rows(EulerMatrix const& f) {
    return {{{f.nx, f.ox, f.ax, f.px}, {f.ny, f.oy, f.ay, f.py}, {f.nz, f.oz, f.az, f.pz}}};
}
EulerMatrix Frame(Matrix const& m) {
    return {m[0][0], m[1][0], m[2][0], m[0][1], m[1][1], m[2][1], m[0][2], m[1][2], m[2][2], m[0][3], m[1][3], m[2][3]};
}

/// The same sum in the same order, written with indexes.
Matrix Product(Matrix const& f, Matrix const& g) {
    Matrix out{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 4; ++column) {
            out[row][column] = f[row][0] * g[0][column] + f[row][1] * g[1][column] + f[row][2] * g[2][column];
            if (column == 3) {
                out[row][column] += f[row][3];
            }
        }
    }
    return out;
}

bool IsSame(EulerMatrix const& a, EulerMatrix const& b) {
    return std::memcmp(&a, &b, sizeof(a)) == 0;
}

class Random {
public:
    double Value() { return std::uniform_real_distribution(-1000.0, 1000.0)(engine); }
    double Angle(double limit = 180.0) { return std::uniform_real_distribution(-limit, limit)(engine); }
    ZyxEulerPose Pose() { return {Value(), Value(), Value(), Angle(), Angle(89.0), Angle()}; }

private:
    std::mt19937 engine{20261121};
};

TEST(FrameMath, AgreesToTheLastBitWithTheFormulas) {
    Random random;
    for (int i = 0; i < 500; ++i) {
        ZyxEulerPose const pose = random.Pose();
        double const cx = std::cos(pose.rx * degree), sx = std::sin(pose.rx * degree);
        double const cy = std::cos(pose.ry * degree), sy = std::sin(pose.ry * degree);
        double const cz = std::cos(pose.rz * degree), sz = std::sin(pose.rz * degree);
        EulerMatrix f, g, out;
        ZYXeulerToFrame(&pose, &f);
        ASSERT_TRUE(IsSame(f, Frame({{{cz * cy, sy * sx * cz - sz * cx, sz * sx + sy * cz * cx, pose.x},
                                      {sz * cy, cz * cx + sz * sy * sx, sz * sy * cx - sx * cz, pose.y},
                                      {-sy, sx * cy, cy * cx, pose.z}}})));
        ZyxEulerPose const other = random.Pose();
        ZYXeulerToFrame(&other, &g);
        MultiplyFrames(&f, &g, &out);
        ASSERT_TRUE(IsSame(out, Frame(Product(Rows(f), Rows(g)))));

        InvertFrame(&f, &out);
        ASSERT_TRUE(IsSame(out, Frame({{{f.nx, f.ny, f.nz, -f.nx * f.px - f.ny * f.py - f.nz * f.pz},
                                        {f.ox, f.oy, f.oz, -f.ox * f.px - f.oy * f.py - f.oz * f.pz},
                                        {f.ax, f.ay, f.az, -f.ax * f.px - f.ay * f.py - f.az * f.pz}}})));

        XyzVector const u{random.Value() / 1000, random.Value() / 1000, random.Value() / 1000};
        double const angle = random.Angle(720.0);
        double const t = angle * degree, s = std::sin(t), c = std::cos(t), v = 1 - c;
        RotateFrame(&f, &u, &out, angle);
        ASSERT_TRUE(IsSame(
            out,
            Frame(Product(Rows(f), {{{u.x * u.x * v + c, u.x * u.y * v - u.z * s, u.x * u.z * v + u.y * s, 0},
                                     {u.y * u.x * v + u.z * s, u.y * u.y * v + c, u.y * u.z * v - u.x * s, 0},
                                     {u.x * u.z * v - u.y * s, u.y * u.z * v + u.x * s, u.z * u.z * v + c, 0}}}))));

        ZyxEulerPose back;
        FrameToZYXeuler(&f, &back);
        double const rz = std::atan2(f.ny, f.nx), cr = std::cos(rz), sr = std::sin(rz);
        ASSERT_EQ(back.rz, rz / degree);
        ASSERT_EQ(back.ry, std::atan2(-f.nz, f.ny * sr + f.nx * cr) / degree);
        ASSERT_EQ(back.rx, std::atan2(f.ax * sr - f.ay * cr, f.oy * cr - f.ox * sr) / degree);

        XyzVector const a{random.Value(), random.Value(), random.Value()};
        XyzVector cross;
        double inner = 0.0;
        CrossProduct(&a, &u, &cross);
        InnerProduct(&a, &u, &inner);
        ASSERT_EQ(cross.x, a.y * u.z - u.y * a.z);
        ASSERT_EQ(cross.y, a.z * u.x - a.x * u.z);
        ASSERT_EQ(cross.z, a.x * u.y - u.x * a.y);
        ASSERT_EQ(inner, a.z * u.z + (a.x * u.x + a.y * u.y));
    }
}

TEST(FrameMath, EdgesOfTheDomain) {
    EulerMatrix identity, out;
    std::memset(static_cast<void*>(&identity), 0x7f, sizeof(identity));
    SetIdentityMatrixInFrame(&identity);
    EXPECT_TRUE(IsSame(identity, {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}));
    ZyxEulerPose pose{9, 9, 9, 9, 9, 9};
    FrameToZYXeuler(&identity, &pose);
    for (double const zero : {pose.x, pose.y, pose.z, pose.rx, pose.ry, pose.rz}) {
        EXPECT_EQ(zero, 0.0);
    }
    // Gimbal lock with nx and ny exactly 0: rx gets the whole rotation about the vertical.
    for (double const sign : {1.0, -1.0}) {
        pose = {0, 0, 0, 30, 90 * sign, 70};
        EulerMatrix gimbal;
        ZYXeulerToFrame(&pose, &gimbal);
        gimbal.nx = gimbal.ny = 0.0;
        FrameToZYXeuler(&gimbal, &pose);
        EXPECT_EQ(pose.rz, 0.0);
        EXPECT_NEAR(pose.ry, 90.0 * sign, 1e-9);
        EXPECT_NEAR(pose.rx, sign > 0 ? 30.0 - 70.0 : 30.0 + 70.0, 1e-9);
    }
    EulerMatrix const negativeZeros{-0.0, -0.0, -1, 0, 1, 0, 1, 0, 0, 0, 0, 0};
    FrameToZYXeuler(&negativeZeros, &pose);
    EXPECT_EQ(pose.rz, -180.0);

    XyzVector const twice{0, 0, 2}; // the axis is not normalised
    RotateFrame(&identity, &twice, &out, 60.0);
    EXPECT_NEAR(out.az, 4 * 0.5 + 0.5, 1e-12);
    EulerMatrix broken = identity;
    broken.ox = INFINITY;
    RotateFrame(&broken, &twice, &out, 0.0);
    EXPECT_TRUE(std::isnan(out.px)); // the multiplication by zero takes place
    EXPECT_EQ(out.py, 0.0);

    std::ostringstream text;
    text << XyzVector{1, -2.5, 3} << '|' << EulerMatrix{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12.5};
    EXPECT_EQ(text.str(), "X: 1\nY: -2.5\nZ: 3|nx: 1, ox: 4, ax: 7, px: 10\nny: 2, oy: 5, ay: 8, py: 11\n"
                          "nz: 3, oz: 6, az: 9, pz: 12.5");
}

} // namespace
} // namespace harvlink::test
