#include <cmath>

#include <gtest/gtest.h>

#include "simulator/motion/CartesianPath.h"
#include "simulator/motion/SpeedProfile.h"

namespace harvlink::test {
namespace {

using namespace simulator;

TEST(SpeedProfile, KeepsSpeedAndAccelerationAndEndsExactly) {
    struct Case {
        double length, speed, acceleration, deceleration, duration;
    };
    Case const cases[] = {
        {100, 50, 100, 200, 100.0 / 50 + 0.25 + 0.125}, // with a middle part
        {7, 50, 100, 50, 2 * 7 / std::sqrt(2 * 7 / (1.0 / 100 + 1.0 / 50))}, // a triangle
        {1e-6, 1500, 5000, 1000, 2e-6 / std::sqrt(2e-6 / (1.0 / 5000 + 1.0 / 1000))},
    };
    for (auto const& [length, speed, acceleration, deceleration, duration] : cases) {
        SpeedProfile const profile(length, speed, acceleration, deceleration);
        EXPECT_NEAR(profile.Duration(), duration, 1e-9 * duration);
        EXPECT_EQ(profile.DistanceAt(profile.Duration()), length);
        EXPECT_EQ(profile.FractionAt(1e9), 1.0);
        EXPECT_EQ(profile.DistanceAt(-1.0), 0.0);
        double const dt = profile.Duration() / 1000;
        double before = 0.0;
        double speedBefore = 0.0;
        for (int i = 1; i <= 1000; ++i) {
            double const now = profile.DistanceAt(i * dt);
            double const speedNow = (now - before) / dt;
            EXPECT_GE(speedNow, -1e-9 * speed);
            EXPECT_LE(speedNow, speed * (1 + 1e-6));
            EXPECT_LE((speedNow - speedBefore) / dt, acceleration * 1.001);
            EXPECT_GE((speedNow - speedBefore) / dt, -deceleration * 1.001);
            before = now;
            speedBefore = speedNow;
        }
    }
    for (double const nothing : {0.0, -1.0, std::nan(""), HUGE_VAL}) {
        SpeedProfile const profile(nothing, 1, 1, 1);
        EXPECT_EQ(profile.Duration(), 0.0);
        EXPECT_EQ(profile.FractionAt(0.0), 1.0);
    }
}

double TurnBetween(Frame const& a, Frame const& b) {
    return ToAxisAndAngle(a.rotation.Inverse() * b.rotation).degrees;
}

TEST(CartesianPath, ArcPassesThroughItsThreeFrames) {
    Frame const from = FrameOfPose({100, 0, 50, 180, 0, 0});
    Frame const to = FrameOfPose({0, -100, 50, 180, 30, 90});
    // The long arc, 270 degrees around (0, 0, 50), and the short arc in another plane.
    for (Frame const& through : {FrameOfPose({-100, 0, 50, 150, 0, 20}), FrameOfPose({80, -80, 90, 180, -10, 0})}) {
        auto const path = CartesianPath::Arc(from, through, to);
        ASSERT_TRUE(path);
        double nearest = 1e9;
        double turn = 0.0;
        for (int i = 0; i <= 20000; ++i) {
            Frame const at = path->At(i / 20000.0);
            double const distance = Norm(at.position - through.position);
            turn = distance < nearest ? TurnBetween(at, through) : turn;
            nearest = std::min(nearest, distance);
        }
        EXPECT_LT(nearest, 0.03);
        EXPECT_LT(turn, 0.01);
        EXPECT_LT(Norm(path->At(1.0).position - to.position), 1e-9);
        EXPECT_LT(TurnBetween(path->At(1.0), to), 1e-6);
        EXPECT_LT(TurnBetween(path->At(0.0), from), 1e-6);
        EXPECT_NEAR(Norm(path->At(0.5).position - path->At(0.25).position),
                    Norm(path->At(1.0).position - path->At(0.75).position), 1e-9);
    }
    EXPECT_NEAR(CartesianPath::Arc(from, FrameOfPose({-100, 0, 50, 0, 0, 0}), to)->Length(), 150 * std::acos(-1.0),
                1e-6);
}

TEST(CartesianPath, ThreePointsOnALine) {
    auto const at = [](double x) { return FrameOfPose({x, 2 * x, 3 * x, 0, 0, 0}); };
    EXPECT_TRUE(CartesianPath::Arc(at(0), at(1), at(3)));
    EXPECT_LT(Norm(CartesianPath::Arc(at(0), at(1), at(3))->At(0.5).position - at(1.5).position), 1e-12);
    for (auto const& [through, to] : {std::pair{4.0, 3.0}, {-1.0, 3.0}, {0.0, 3.0}, {3.0, 3.0}, {1.0, 0.0}}) {
        EXPECT_FALSE(CartesianPath::Arc(at(0), at(through), at(to))) << through << ' ' << to;
    }
}

} // namespace
} // namespace harvlink::test
