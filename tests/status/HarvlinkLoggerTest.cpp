#include "status/HarvlinkLogger.h"

#include <cstdio>
#include <ctime>
#include <sstream>

#include <gtest/gtest.h>

#include "support/ScratchFolder.h"
#include "support/TimeZone.h"

namespace harvlink::test {
namespace {

constexpr char const* logFile = "HarvlinkLog.txt";

std::string Joined(int first, int second, int third, char separator) {
    return std::to_string(first) + separator + std::to_string(second) + separator + std::to_string(third);
}

/// The line without its time. Empty if the time is not made of plain numbers without leading zeros.
std::string WithoutTime(std::string const& line) {
    unsigned n[6]{};
    int length = 0;
    std::sscanf(line.c_str(), "%u/%u/%u %u:%u:%u%n", &n[0], &n[1], &n[2], &n[3], &n[4], &n[5], &length);
    std::ostringstream time;
    time << n[0] << '/' << n[1] << '/' << n[2] << ' ' << n[3] << ':' << n[4] << ':' << n[5];
    return length > 0 && line.starts_with(time.str()) ? line.substr(time.str().size()) : "";
}

TEST(HarvlinkLogger, AppendsOneLinePerStatus) {
    ScratchFolder const folder;
    WriteFile(logFile, "kept\n");
    HarvlinkLogger::LogStatusInfo(StatusInformation(-49934465, "MotionManager failure."));
    HarvlinkLogger::LogStatusInfo(StatusInformation(0));
    std::istringstream lines(ContentOf(logFile));
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "kept");
    std::getline(lines, line);
    EXPECT_EQ(WithoutTime(line), " Code (-49934465): MotionManager failure.");
    std::getline(lines, line);
    EXPECT_EQ(WithoutTime(line), " Code (0): OK");
    EXPECT_TRUE(ContentOf(logFile).ends_with("OK\n"));
}

// With a zone 14 hours ahead, the local time is never that of the UTC date.
TEST(HarvlinkLogger, DateIsUtcAndTimeIsLocal) {
    TimeZone const zone("TEST-14");
    std::string expected;
    std::string actual = "none";
    for (int attempt = 0; attempt < 10 && actual != expected; ++attempt) { // a second may end in between
        std::time_t const now = std::time(nullptr);
        std::tm const utc = *std::gmtime(&now);
        std::tm const local = *std::localtime(&now);
        expected = Joined(utc.tm_year + 1900, utc.tm_mon + 1, utc.tm_mday, '/') + ' ' +
                   Joined(local.tm_hour, local.tm_min, local.tm_sec, ':');
        actual = HarvlinkLogger::GetFormattedTime();
    }
    EXPECT_EQ(actual, expected);
}

TEST(HarvlinkLogger, FileThatCanNotBeOpenedIsIgnored) {
    ScratchFolder const folder;
    std::filesystem::create_directory(logFile); // not even root can open a folder as a file
    EXPECT_NO_THROW(HarvlinkLogger::LogStatusInfo(StatusInformation(1)));
    EXPECT_TRUE(std::filesystem::is_empty(logFile));
}

} // namespace
} // namespace harvlink::test
