#include <cstdint>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "harvlink/StatusInfo.h"
#include "status/ErrorTables.h"
#include "status/MainStatusTable.h"

namespace harvlink::test {
namespace {

constexpr char const* notFound = "Could not find an error description with that code.";

struct Digest {
    unsigned entries = 0;
    std::uint64_t hash = 0xcbf29ce484222325U;
};

/// FNV-1a over "<code>:<text>\n" of all entries, in the order of their codes.
template <typename Code>
Digest DigestOf(StatusTable<Code> const& table) {
    Digest digest;
    for (int code = 0; code < 0x40000; ++code) {
        if (auto const text = table.Find(static_cast<Code>(code))) {
            ++digest.entries;
            for (char const character : std::to_string(code) + ':' + std::string(*text) + '\n') {
                digest.hash = (digest.hash ^ static_cast<unsigned char>(character)) * 0x100000001b3U;
            }
        }
    }
    return digest;
}

TEST(StatusText, StandsInItsStatus) {
    constexpr std::pair<int, char const*> texts[] = {
        {8, "Requested command is undefined."},
        {40961, "Instance value is invalid"},
        {0x10004, "The bit value you are trying to access is invalid. Bit value must be between 0 and 7 and in a valid "
                  "group."},
    };
    for (auto const& [code, text] : texts) {
        EXPECT_EQ(StatusInformation(code).Message, text) << code;
        EXPECT_EQ(StatusInformation(code).StatusCode, code);
    }
}

// The digests come from the list of the controller, not from the tables, so they detect a changed letter.
TEST(StatusText, NoLetterOfAnyTableIsChanged) {
    struct {
        char const* name;
        Digest actual;
        unsigned entries;
        std::uint64_t hash;
    } const tables[] = {
        {"main", DigestOf(MainStatusTable), 265, 0x3ea12a6b97693b30},
        {"job", DigestOf(JobErrorTable), 3, 0x7e2fbc25b1bc6c0},
        {"file", DigestOf(FileErrorTable), 1, 0xfe51692925be6cf4},
        {"io", DigestOf(IOErrorTable), 3, 0x9101d3dbcaaf368d},
        {"motion", DigestOf(MotionErrorTable), 30, 0xc9585d3fc67c2893},
        {"motion short", DigestOf(MotionShortErrorTable), 30, 0x8e43c5e185aa4b60},
        {"conversion", DigestOf(ConversionErrorTable), 5, 0x522acdcbe535d380},
        {"control group", DigestOf(ControlGroupErrorTable), 1, 0xc1d5c99058c24bf3},
    };
    for (auto const& table : tables) {
        EXPECT_EQ(table.actual.entries, table.entries) << table.name;
        EXPECT_EQ(table.actual.hash, table.hash) << table.name;
    }
    EXPECT_EQ(MainStatusTable.Size(), 268U); // three rows have the code of an earlier row
}

TEST(StatusText, CodesWithoutRowAreKeptAndHaveNoWords) {
    for (int const code : {1, 7, 0x1389, 0x20008, 0x20016, 0x30009, 0x30010, 0x30011, 0x30012, 0x30013, 0x30016,
                           0x30017, 0x3000a, -1, -59959039, 0x7fffffff, INT32_MIN}) {
        EXPECT_EQ(StatusInformation(code).Message, notFound) << code;
        EXPECT_EQ(StatusInformation(code).StatusCode, code);
    }
}

} // namespace
} // namespace harvlink::test
