#include "cli/output/Output.h"

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "cli/output/Progress.h"
#include "cli/program/Interrupt.h"
#include "support/Environment.h"
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
    test::SetVariable("NO_COLOR", "");
    test::SetVariable("TERM", "xterm");
    EXPECT_NE(Shown(table, true).find('\x1b'), std::string::npos);
    EXPECT_EQ(Shown(table, false).find('\x1b'), std::string::npos);
    test::SetVariable("TERM", "dumb");
    EXPECT_EQ(Shown(table, true).find('\x1b'), std::string::npos);
    test::SetVariable("TERM", "xterm");
    test::SetVariable("NO_COLOR", "1");
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

/// Keeps what was written, and lets a test wait for each flush.
class FlushedBuffer : public std::stringbuf {
public:
    void WaitForFlush() {
        std::unique_lock lock(mutex_);
        flushed_.wait_for(lock, std::chrono::seconds(20), [this, wanted = count_ + 1] { return count_ >= wanted; });
    }

protected:
    int sync() override {
        std::lock_guard const lock(mutex_);
        ++count_;
        flushed_.notify_all();
        return 0;
    }

private:
    std::mutex mutex_;
    std::condition_variable flushed_;
    int count_ = 0;
};

TEST(Progress, ShowsOneLineOnATerminalAndWipesItOff) {
    std::string const longText = std::string(71, 'x') + "\u6eb6";
    std::istringstream in;
    std::ostringstream out;
    for (bool const isTerminal : {true, false}) {
        FlushedBuffer written;
        std::ostream err(&written);
        Console console{in, out, err, isTerminal, isTerminal, isTerminal};
        Output output(console);
        {
            Progress progress(output, "Fetching A\x1b.JBI");
            if (isTerminal) {
                written.WaitForFlush();
            }
            progress.Count("Probe", 12, 200);
            if (isTerminal) {
                written.WaitForFlush();
                written.WaitForFlush();
            }
            progress.Show(longText);
            if (isTerminal) {
                written.WaitForFlush();
                written.WaitForFlush();
            }
        }
        std::string const text = written.str();
        EXPECT_EQ(text.empty(), !isTerminal);
        if (isTerminal) {
            EXPECT_EQ(text.find("\r\x1b[KFetching A?.JBI  0."), 0U) << text;
            EXPECT_NE(text.find("\r\x1b[KProbe 12 of 200  "), std::string::npos) << text;
            EXPECT_NE(text.find(std::string(71, 'x') + "  "), std::string::npos) << "half a character is not shown";
            EXPECT_TRUE(text.ends_with(" s\r\x1b[K")) << text;
        }
    }
}

TEST(Output, TrimsOnlyTheZerosThatFillAField) {
    EXPECT_EQ(TrimField(std::string("AB\0C\0\0", 6)), std::string("AB\0C", 4));
    EXPECT_EQ(TrimField(std::string(4, '\0')), "");
}

#if !defined(_WIN32) // there are no signals
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
        testing::ExitedWithCode(130), "^harvlink: interrupted\n$");
}
#endif

} // namespace
} // namespace harvlink::cli
