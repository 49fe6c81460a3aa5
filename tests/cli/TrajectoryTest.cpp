#include <array>
#include <string>

#include <gtest/gtest.h>

#include "cli/output/Words.h"
#include "cli/trajectory/PathTracker.h"
#include "cli/trajectory/TrajectoryFile.h"
#include "support/Faults.h"

namespace harvlink::cli {
namespace {

TEST(Trajectory, NamesEveryWrongLine) {
    std::string const points = FaultsOf([] {
        ParseTrajectory("t", "move,speed,acceleration,x,y,z,rx,ry,rz\n"
                             "line,0.1,,1,2,3,4,5,6\n" // good, as the next
                             "joint,100,20,1,2,3,4,5,6\n"
                             "line,0.09,,1,2,3,4,5,6\n"
                             "joint,100.1,,1,2,3,4,5,6\n"
                             "line,1,19.9,1,2,3,4,5,6\n"
                             "line,1,,1,2,,4,5,6\n"
                             "line,1,,2147484,2,3,4,5,6\n"
                             "circle,1,,1,2,3,4,5,6\n"
                             "line,1,,1,2,3\n");
    });
    for (char const* const line : {"t:4: ", "t:5: ", "t:6: ", "t:7: ", "t:8: ", "t:9: ", "t:10: "}) {
        EXPECT_NE(points.find(line), std::string::npos) << line << points;
    }
    EXPECT_EQ(points.find("t:2"), std::string::npos);
    EXPECT_EQ(points.find("t:3"), std::string::npos);
}

TEST(Trajectory, RefusesAWrongTrajectoryHeader) {
    for (char const* const text : {"", "speed,x,y,z,rx,ry,rz\n", "x,y,z,rx,ry,rz\n1,2,3,4,5,6\n", "speed,x,s\n1,2,3\n",
                                   "speed,speed,x\n1,1,1\n", "speed,x,hue\n1,1,1\n", "speed\n1\n"}) {
        EXPECT_NE(FaultsOf([&] { ParseTrajectory("t", text); }), "") << text;
    }
}

TEST(Trajectory, FillsAPointFromItsColumns) {
    Trajectory const circle =
        ParseTrajectory("t", "Via_S,via_l,via_u,via_r,via_b,via_t,S,L,U,R,B,T,speed,move,group,tool\n"
                             "1,2,3,4,5,6,7,8,9,10,11,12,250,circle,R2,3\n");
    ASSERT_EQ(circle.size(), 1U);
    EXPECT_EQ(circle[0].auxiliaryAxes, (std::array<double, 8>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(circle[0].position.axes, (std::array<double, 8>{7, 8, 9, 10, 11, 12}));
    EXPECT_EQ(circle[0].position.coordinateType, CoordinateType::Pulse);
    EXPECT_EQ(circle[0].position.toolNumber, 3);
    EXPECT_EQ(circle[0].controlGroup, ControlGroupId::R2);
    EXPECT_EQ(circle[0].moveType, MoveInterpolationType::Circle);
    EXPECT_EQ(circle[0].accelerationRatio, RatioNotSpecified);
}

class PathTrackerTest : public testing::Test {
protected:
    using Axes = PathTracker::Axes;
    using State = PathTracker::State;

    State After(PathTracker& progress, Axes const& axes, int milliseconds) {
        now_ += std::chrono::milliseconds(milliseconds);
        return progress.Update(axes, now_);
    }

    PathTracker::Time now_{};
};

TEST_F(PathTrackerTest, ArrivesAtTheEndOfAClosedPathAndNotAtItsStart) {
    Axes const home{100, 0, 0, 180};
    Axes const same{100, 0, 0, -180};
    PathTracker progress(CoordinateType::BaseCoordinate, home, {{200, 0, 0, 180}, home}, true, now_);
    EXPECT_EQ(After(progress, home, 500), State::Moving);
    EXPECT_EQ(After(progress, {200, 0, 0, 180}, 1000), State::Moving);
    EXPECT_NEAR(progress.Fraction(), 0.5, 1e-9);
    EXPECT_EQ(After(progress, same, 1000), State::Moving) << "it may only pass by";
    EXPECT_EQ(After(progress, same, 250), State::Arrived);
    EXPECT_EQ(progress.Fraction(), 1.0);
}

TEST_F(PathTrackerTest, TellsStandingStillElsewhereFromArriving) {
    PathTracker progress(CoordinateType::Pulse, {}, {{1000}}, true, now_);
    EXPECT_EQ(After(progress, {900}, 100), State::Moving);
    EXPECT_EQ(After(progress, {901}, 9000), State::Moving);
    EXPECT_EQ(After(progress, {900}, 1100), State::Stopped);
    EXPECT_LT(progress.Fraction(), 1.0);
}

TEST_F(PathTrackerTest, AcceptsAMotionThatWasOverBeforeItWasLookedAt) {
    Axes const home{5};
    PathTracker progress(CoordinateType::Pulse, home, {{50000}, home}, true, now_);
    EXPECT_EQ(After(progress, home, 1900), State::Moving);
    EXPECT_EQ(After(progress, home, 200), State::Arrived);
}

} // namespace
} // namespace harvlink::cli
