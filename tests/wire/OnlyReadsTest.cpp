#include "wire/OnlyReads.h"

#include <set>
#include <tuple>

#include <gtest/gtest.h>

namespace harvlink::test {
namespace {

/// Division, command, service.
using Row = std::tuple<int, int, int>;

std::set<Row> const reads = [] {
    std::set<Row> rows{{2, 0, 0x16}, {2, 0, 0x32}, {1, 114, 14}};
    for (int const whole :
         {112, 113, 114, 115, 116, 117, 118, 119, 127, 128, 129, 136, 137, 829, 844, 866, 867, 868, 869, 924, 981}) {
        rows.insert({1, whole, 1});
    }
    for (int const one : {120, 121, 122, 123, 124, 125, 140}) {
        rows.insert({1, one, 14});
    }
    return rows;
}();

/// Every command, service and port: what is not known to be a read counts as one that may write or move.
TEST(OnlyReads, KnowsTheReadsAndNothingElse) {
    std::set<Row> found;
    for (int const division : {1, 2}) {
        for (int command = 0; command < 0x10000; ++command) {
            for (int service = 0; service < 0x100; ++service) {
                if (OnlyReads(static_cast<Division>(division), static_cast<CommandNumber>(command),
                              static_cast<std::uint8_t>(service))) {
                    found.insert({division, command, service});
                }
            }
        }
    }
    EXPECT_EQ(found, reads);
}

} // namespace
} // namespace harvlink::test
