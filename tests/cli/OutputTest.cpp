#include "cli/output/Output.h"

#include <cstdlib>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "cli/program/Interrupt.h"
#include "cli/trajectory/PathTracker.h"
#include "words/text/Text.h"

namespace harvlink::cli {
namespace {

struct Streams {
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;

    Console OnTerminal(bool isTerminal) { return {in, out, err, isTerminal, isTerminal, isTerminal}; }
};

std::string Shown(Json const& document, bool isTerminal = false) {
    Streams streams;
    Console console = streams.OnTerminal(isTerminal);
    Output(console).Show(document);
    return streams.out.str();
}

TEST(Output, MakesTablesOfDocuments) {
    EXPECT_EQ(Shown(Json::array()), "none\n");
    EXPECT_EQ(Shown({{"servo_on", true}, {"axes", {{"x", 1.5}}}, {"names", {"S", "L"}}, {"figure", nullptr}}),
              "Servo on  yes\nX         1.5\nNames     S, L\nFigure    -\n");
    EXPECT_EQ(Shown(Json::array({{{"name", "\u00e4\u00f6"}, {"value", 5}}, {{"name", "abcde"}, {"value", 10}}})),
              "Name   Value\n\u00e4\u00f6         5\nabcde     10\n");
    EXPECT_EQ(Shown({{"name", "a\x1b[2Jb\n"}}), "Name  a?[2Jb?\n") << "a controller's text must not steer the terminal";
}

TEST(Output, ColoursOnlyTerminalsThatAllowIt) {
    Json const table = Json::array({{{"name", "a"}}});
    ::unsetenv("NO_COLOR");
    ::setenv("TERM", "xterm", 1);
    EXPECT_NE(Shown(table, true).find('\x1b'), std::string::npos);
    EXPECT_EQ(Shown(table, false).find('\x1b'), std::string::npos);
    ::setenv("TERM", "dumb", 1);
    EXPECT_EQ(Shown(table, true).find('\x1b'), std::string::npos);
    ::setenv("TERM", "xterm", 1);
    ::setenv("NO_COLOR", "1", 1);
    EXPECT_EQ(Shown(table, true).find('\x1b'), std::string::npos);
}

TEST(Output, WritesJsonThatCanBeReadWhateverTheBytes) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    Streams streams;
    Console console = streams.OnTerminal(false);
    Output output(console);
    output.json = true;
    output.Show({{"name", bytes}, {"number", std::numeric_limits<double>::quiet_NaN()}});
    Json const read = Json::parse(streams.out.str());
    EXPECT_EQ(read["name"].get<std::string>().substr(0, 128), bytes.substr(0, 128));
    EXPECT_TRUE(read["number"].is_null());
}

TEST(Output, TrimsOnlyTheZerosThatFillAField) {
    EXPECT_EQ(TrimField(std::string("AB\0C\0\0", 6)), std::string("AB\0C", 4));
    EXPECT_EQ(TrimField(std::string(4, '\0')), "");
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

TEST(InterruptDeathTest, KeepsTheFirstSignalAndEndsWithTheSecond) {
    EXPECT_EXIT(
        {
            Interrupt const interrupt;
            if (interrupt.Wait(std::chrono::milliseconds(0))) {
                std::exit(1);
            }
            ::raise(SIGINT);
            if (!interrupt.Wait(std::chrono::hours(1))) {
                std::exit(2);
            }
            ::raise(SIGINT);
        },
        testing::KilledBySignal(SIGINT), "");
}

} // namespace
} // namespace harvlink::cli
