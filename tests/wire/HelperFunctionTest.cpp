#include "wire/HelperFunction.h"

#include <limits>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "wire/AttachedControlGroup.h"
#include "wire/WireInteger.h"

namespace harvlink::test {
namespace {

using namespace HelperFunction;
using Items = std::vector<std::string>;

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(HelperFunction, CompareStringsByByteThenLength) {
    EXPECT_TRUE(CompareStrings("A", "B") && CompareStrings("A", "AA") && CompareStrings("", "A"));
    EXPECT_TRUE(CompareStrings("Z", "a") && CompareStrings("z", "\xe4")); // bytes are unsigned
    EXPECT_FALSE(CompareStrings("A", "A") || CompareStrings("B", "A") || CompareStrings("AA", "A"));
}

TEST(HelperFunction, DoublesBecomeHundredthsWithoutRounding) {
    struct {
        double value;
        std::int32_t hundredths;
    } const cases[] = {
        {0.999, 99},
        {12.345, 1234},
        {-0.999, -99},
        {100.0, 10000},
        {21474836.47, 2147483647},
        {21474836.48, lowest},
        {-21474836.48, lowest},
        {1e300, lowest},
        {infinity, lowest},
        {-infinity, lowest},
        {std::numeric_limits<double>::quiet_NaN(), lowest},
    };
    for (auto const& [value, hundredths] : cases) {
        EXPECT_EQ(ConvertDoubleToInt32(value), hundredths) << value;
    }
    EXPECT_EQ(TruncateToInt32(2147483647.9), 2147483647);
    EXPECT_EQ(TruncateToInt32(-2147483648.9), lowest);
    EXPECT_EQ(ScaleToInt32(0.5, 1), 1);
    EXPECT_EQ(ScaleToInt32(-0.5, 1), -1);
    EXPECT_EQ(ScaleToInt32(2147483647.5, 1), lowest);
}

TEST(HelperFunction, UnknownGenerationCountsAsNew) {
    for (int version = -1; version <= 6; ++version) {
        EXPECT_EQ(CheckUAPICompatible(static_cast<ControllerVersion>(version)), version < 0 || version >= 3) << version;
    }
}

TEST(HelperFunction, ToUpperChangesLettersOnly) {
    EXPECT_EQ(ToUpper("abcXyz-09.jbi\xe4"), "ABCXYZ-09.JBI\xe4");
}

TEST(HelperFunction, SplitsAtWhiteSpace) {
    struct {
        std::string_view text;
        bool sort;
        Items items;
    } const cases[] = {
        {"//TOOL 0\r\nA B", false, {"//TOOL", "0", "A", "B"}},
        {"", false, {}},
        {" \t\r\n\v\f ", false, {}},
        {"  c\t\tb\r\n\na  ", true, {"a", "b", "c"}},
        {"b a", false, {"b", "a"}},
        {std::string_view("a\0b c", 5), false, {std::string("a\0b", 3), "c"}},
        {"\xa0 \xe4", false, {"\xa0", "\xe4"}},
    };
    for (auto const& example : cases) {
        Items items;
        SplitStringOnCLRF(items, example.text, example.sort);
        EXPECT_EQ(items, example.items);
    }
    Items kept{"z"};
    SplitStringOnCLRF(kept, "b a", true);
    EXPECT_EQ(kept, (Items{"a", "b", "z"})) << "items are appended, and all are sorted";
}

TEST(HelperFunction, SplitsAtCharacterAndKeepsEmptyFields) {
    struct {
        std::string_view text;
        bool sort;
        Items items;
    } const cases[] = {
        {"1,,3", false, {"1", "", "3"}},
        {"1,3,", false, {"1", "3"}},
        {",", false, {""}},
        {",,", false, {"", ""}},
        {"", false, {}},
        {"one", false, {"one"}},
        {"b,a b,\n,a", true, {"\n", "a", "a b", "b"}},
    };
    for (auto const& example : cases) {
        Items items;
        SplitStringOnChar(items, example.text, ',', example.sort);
        EXPECT_EQ(items, example.items);
    }
}

TEST(HelperFunction, ToolBoundIsInclusive) {
    EXPECT_TRUE(DoesToolFileExist(0, 0) && DoesToolFileExist(64, 64));
    EXPECT_FALSE(DoesToolFileExist(0, 1) || DoesToolFileExist(64, 65) || DoesToolFileExist(64, -1));
}

TEST(ControlGroupId, FromTextAndBack) {
    struct {
        char const* text;
        int id; ///< 0 if the text names no kind of group
        char const* printed;
    } const cases[] = {
        {"R1", 1, "R1"},    {"R8", 8, "R8"},    {"B1", 11, "B1"}, {"B8", 18, "B8"}, {"S1", 21, "S1"},
        {"S12", 32, "S12"}, {"S24", 44, "S24"}, {"S25", 45, ""},  {"R9", 9, "B-1"}, {"S001", 21, "S1"},
        {"X1", 0, "R0"},    {"", 0, "R0"},      {"r1", 0, "R0"},  {"R0", 0, "R0"},
    };
    for (auto const& [text, id, printed] : cases) {
        std::ostringstream stream;
        stream << static_cast<ControlGroupId>(id);
        EXPECT_EQ(stream.str(), printed);
        EXPECT_EQ(static_cast<int>(AttachedControlGroup(text).Id), id) << text;
        EXPECT_EQ(AttachedControlGroup(text).NumberOfAxes, 0U);
        bool valid = id == 0;
        auto const group = ControlGroupFromString(text, valid);
        bool const isKind = std::string_view("RBS").find(*text) != std::string_view::npos && *text != '\0';
        EXPECT_EQ(valid, isKind) << text;
        EXPECT_EQ(static_cast<int>(group), isKind ? id : 1) << text;
    }
    bool valid = false;
    EXPECT_THROW(ControlGroupFromString("Bx", valid), std::invalid_argument);
    EXPECT_TRUE(valid);
    EXPECT_THROW(ControlGroupFromString("R99999999999", valid), std::out_of_range);
    EXPECT_FALSE(valid);
    EXPECT_THROW(ControlGroupFromString("S", valid), std::invalid_argument);
    EXPECT_TRUE(valid);
}

} // namespace
} // namespace harvlink::test
