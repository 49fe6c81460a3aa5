#include "cli/output/Output.h"

#include <cstdlib>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "cli/program/Interrupt.h"
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
