#include "connection/SystemFileParser.h"

#include <gtest/gtest.h>

namespace harvlink::test {
namespace {

using enum ControlGroupId;
using Lines = std::vector<std::string>;

TEST(SystemFileParser, CutsTextIntoSections) {
    SystemFileParser parser("lost\n//SERVO POWER \t\r\nR1\r\n\n /x\n///// B\nb\n//\nlost too\n//SERVO POWER\nR2");
    Lines names{"old"};
    parser.GetSectionNames(names);
    EXPECT_EQ(names, (Lines{"", " B", "SERVO POWER"}));
    Lines lines{"old"};
    parser.GetSection("SERVO POWER", lines);
    EXPECT_EQ(lines, (Lines{"R1\r", "", " /x", "R2"})) << "both parts of the section";
    parser.GetSection(" B", lines);
    EXPECT_EQ(lines, (Lines{"b"}));
    parser.GetSection("", lines);
    EXPECT_EQ(lines, Lines{});
    parser.GetSection("UNKNOWN", lines);
    EXPECT_EQ(lines, Lines{});
    parser.GetSectionNames(names);
    EXPECT_EQ(names, (Lines{"", " B", "SERVO POWER", "UNKNOWN"})) << "asking for a section creates it";
}

TEST(SystemFileParser, SectionNames) {
    SystemFileParser const parser("");
    std::pair<std::string, std::string> const cases[] = {
        {"//SERVO POWER\r", "SERVO POWER"},
        {"////", ""},
        {"//A/B //\t \r\n", "A/B //"},
        {"A", "A"},
        {"", ""},
        {"/ \t", ""},
    };
    for (auto const& [name, formatted] : cases) {
        std::string changed = name;
        parser.FormatSectionName(changed);
        EXPECT_EQ(changed, formatted);
    }
}

TEST(SystemFileParser, FirstGroupOfALine) {
    struct {
        char const* line;
        int group; ///< 0 if there is none
    } const cases[] = {
        {"R1", 1},   {"xxR8,R2", 8}, {"S1 R3", 3},       {"R9 S4", 24}, {"R0", 0}, {"RS2", 22},
        {"S12", 21}, {"S24", 22},    {"S0 S09 S90", 29}, {"", 0},       {"R", 0},  {"r1 s1", 0},
        {"B1", 0},   {"RR5", 5},     {"R 1", 0},         {"SSSS", 0},
    };
    SystemFileParser const parser("");
    for (auto const& [line, group] : cases) {
        bool valid = false;
        bool present = group == 0;
        auto const result = parser.GetControlGroupFromLine(line, valid, present);
        EXPECT_TRUE(valid);
        EXPECT_EQ(present, group != 0) << line;
        EXPECT_EQ(static_cast<int>(result), group != 0 ? group : 1) << line;
    }
}

TEST(SystemFileParser, GroupsOfASectionKeepRepeats) {
    SystemFileParser parser("//SERVO POWER\r\nR2 : 1\r\nnone\r\nS12\r\nR2\r\n//X\nR5\n");
    std::vector<ControlGroupId> groups{R7};
    EXPECT_TRUE(parser.GetAllControlGroupsFromSection("SERVO POWER", groups));
    EXPECT_EQ(groups, (std::vector{R2, S1, R2}));
    EXPECT_TRUE(parser.GetAllControlGroupsFromSection("UNKNOWN", groups));
    EXPECT_TRUE(groups.empty());
}

TEST(SystemFileParser, RobotNamesWithABase) {
    for (char const* const line : {"ROBOT B1", "B8", "xBAx", "BB\r"}) {
        EXPECT_TRUE(SystemFileParser::NamesBase(line)) << line;
    }
    for (char const* const line : {"", "B", "B0", "B9", "Base", "AB 1", "B\r", "b1"}) {
        EXPECT_FALSE(SystemFileParser::NamesBase(line)) << line;
    }
}

TEST(SystemFileParser, HostileTextTakesLinearTime) {
    std::size_t const length = 1 << 20;
    std::clock_t const start = std::clock();
    for (std::string const& body :
         {std::string(length, 'S'), std::string(length, '/'), std::string(length, 'B'), std::string(length, '\0')}) {
        SystemFileParser parser("//SERVO POWER\n" + body);
        std::vector<ControlGroupId> groups;
        EXPECT_TRUE(parser.GetAllControlGroupsFromSection("SERVO POWER", groups));
        EXPECT_TRUE(groups.empty());
        SystemFileParser::NamesBase(body);
    }
    EXPECT_LT(std::clock() - start, 20 * CLOCKS_PER_SEC)
        << "in computing time, which the load of the machine does not change";
}

} // namespace
} // namespace harvlink::test
