#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "simulator/arm/ForwardKinematics.h"
#include "simulator/arm/InverseKinematics.h"

namespace harvlink::test {
namespace {

using namespace simulator;

constexpr auto Arm = StandardArm;

double LargestDifference(ArmAngles const& a, ArmAngles const& b) {
    double largest = 0.0;
    for (std::size_t i = 0; i < ArmAxes; ++i) {
        largest = std::max(largest, std::abs(a[i] - b[i]));
    }
    return largest;
}

/// Every third sample has multiples of 15 degrees, where the borders of figures and the singularities are.
ArmAngles RandomAngles(std::mt19937_64& random, int sample) {
    ArmAngles angles{};
    for (std::size_t i = 0; i < ArmAxes; ++i) {
        std::uniform_real_distribution<> within(Arm.limits[i].lowest, Arm.limits[i].highest);
        double const angle = within(random);
        double const snapped = std::round(angle / 15.0) * 15.0;
        angles[i] = sample % 3 == 0 && Arm.limits[i].Contains(snapped) ? snapped : angle;
    }
    return angles;
}

TEST(Kinematics, ForwardMatchesTheDrawing) {
    struct Case {
        ArmAngles angles;
        Pose pose;
    };
    Case const cases[] = {
        {{0, 0, 0, 0, 0, 0}, {890, 0, 1150, 180, -90, 0}},
        {HomeAngles, {790, 0, 1050, 180, 0, 0}},
        {{90, 0, 0, 0, -90, 0}, {0, 790, 1050, 180, 0, 90}},
        {{0, 90, 0, 0, 0, 0}, {850, 0, 450 - 740, 180, 0, 0}},
        {{0, 0, 90, 0, -90, 0}, {150 - 100 + 100, 0, 1050 + 640, 180, -90, 0}},
        {{0, 0, 0, 90, -90, 0}, {790, 100, 1150, -90, 0, 0}},
        {{0, 0, 0, 0, -90, 30}, {790, 0, 1050, 180, 0, -30}},
    };
    for (auto const& [angles, pose] : cases) {
        Frame const flange = FlangeOf(Arm, angles);
        EXPECT_LT(Norm(flange.position - FrameOfPose(pose).position), 1e-9) << ::testing::PrintToString(angles);
        auto const turn = ToAxisAndAngle(FrameOfPose(pose).rotation.Inverse() * flange.rotation);
        EXPECT_LT(turn.degrees, 1e-9) << ::testing::PrintToString(angles)
                                      << ::testing::PrintToString(PoseOfFrame(flange));
    }
}

TEST(Kinematics, InverseAndForwardAgreeInTheWholeWorkspace) {
    std::mt19937_64 random(1);
    for (int sample = 0; sample < 20000; ++sample) {
        ArmAngles const angles = RandomAngles(random, sample);
        Frame const flange = FlangeOf(Arm, angles);
        auto const solved = AnglesOf(Arm, FrameOfPose(PoseOfFrame(flange)), FigureOf(Arm, angles), angles);
        ASSERT_TRUE(solved) << ::testing::PrintToString(angles);
        Frame const reached = FlangeOf(Arm, *solved);
        ASSERT_LT(Norm(reached.position - flange.position), 0.001) << ::testing::PrintToString(angles);
        ASSERT_LT(ToAxisAndAngle(flange.rotation.Inverse() * reached.rotation).degrees, 0.0001);
        ASSERT_LT(LargestDifference(angles, *solved), 0.0001) << ::testing::PrintToString(angles);
    }
}

TEST(Kinematics, EveryFigureIsKeptOrRefused) {
    Frame const flange = FlangeOf(Arm, {10, 5, -20, 30, -70, 15});
    std::size_t reachable = 0;
    for (std::uint32_t word = 0; word < 64; ++word) {
        auto const angles = AnglesOf(Arm, flange, ArmFigure::FromWord(word));
        if (angles) {
            ++reachable;
            EXPECT_EQ(FigureOf(Arm, *angles).Word(), word);
            EXPECT_TRUE(WithinLimits(Arm, *angles));
            EXPECT_LT(Norm(FlangeOf(Arm, *angles).position - flange.position), 1e-6);
        }
    }
    EXPECT_GE(reachable, 8U);
    EXPECT_EQ(AnglesOf(Arm, flange, ArmFigure::FromWord(0xFFFFFFC0U)), AnglesOf(Arm, flange, {}));
}

TEST(Kinematics, RefusesWhatCannotBeReached) {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    // Too far, too near to the shoulder, and not numbers.
    Pose const poses[] = {{1600, 0, 450, 180, 0, 0},
                          {0, 0, 1e9, 0, 0, 0},
                          {200, 0, 350, 180, 0, 0},
                          {nan, 0, 0, 0, 0, 0},
                          {500, 0, 500, nan, 0, 0},
                          {1e300, 1e300, 1e300, 0, 0, 0},
                          {500, 0, 0, 0, 0, std::numeric_limits<double>::infinity()}};
    for (Pose const& pose : poses) {
        EXPECT_FALSE(AnglesOf(Arm, FrameOfPose(pose), {})) << ::testing::PrintToString(pose);
    }
    EXPECT_FALSE(NearestAnglesOf(Arm, FrameOfPose(poses[0]), HomeAngles));
    EXPECT_FALSE(NearestAnglesOf(Arm, FrameOfPose(poses[3]), HomeAngles));
}

TEST(Kinematics, NearestGoesOnThroughTheTurnsOfAnAxis) {
    // T continues beyond 180 degrees. With B at 0, R is free and keeps its value.
    ArmAngles at{0, 0, 0, 20, -90, 170};
    for (int step = 0; step < 40; ++step) {
        ArmAngles wanted = at;
        wanted[5] += 4.0;
        wanted[4] += 2.25;
        auto const nearest = NearestAnglesOf(Arm, FlangeOf(Arm, wanted), at);
        ASSERT_TRUE(nearest);
        ASSERT_LT(LargestDifference(*nearest, wanted), 1e-6) << step;
        at = *nearest;
    }
    EXPECT_NEAR(at[5], 330.0, 1e-6);
}

TEST(TaughtFrames, AxisAndAngleSurvivesHalfTurns) {
    std::mt19937_64 random(2);
    std::uniform_real_distribution<> unit(-1.0, 1.0);
    for (double const degrees : {0.0, 1e-6, 1.0, 90.0, 179.999999, 180.0}) {
        for (int i = 0; i < 50; ++i) {
            Vector3 const any{unit(random), unit(random), unit(random)};
            Rotation const rotation = Rotation::About((1.0 / Norm(any)) * any, degrees);
            auto const [axis, angle] = ToAxisAndAngle(rotation);
            EXPECT_NEAR(angle, degrees, 1e-6);
            EXPECT_LT(ToAxisAndAngle(rotation.Inverse() * Rotation::About(axis, angle)).degrees, 1e-6);
        }
    }
}

} // namespace
} // namespace harvlink::test
