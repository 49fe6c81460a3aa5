// What differs between processors and systems, and must not be seen: width of times and atomics, sign of characters. An access
// to an address that is not aligned ends every test of the preset armhf.
#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <cstddef>
#include <ctime>

#include <gtest/gtest.h>

#include "controller/StatusMessages.h"
#include "harvlink/harvlink_c.h"
#include "support/ScriptedController.h"
#include "variables/VariablesImplementation.h"
#include "wire/HelperFunction.h"

namespace harvlink::test {
namespace {

static_assert(CHAR_BIT == 8 && sizeof(int) == 4 && sizeof(bool) == 1 && sizeof(double) == 8);
static_assert(sizeof(std::time_t) == 8, "a controller's time can lie beyond the year 2038");
static_assert(std::atomic<std::uint64_t>::is_always_lock_free, "counters are read without a lock");
static_assert(alignof(::TimeData) == 8 && offsetof(::TimeData, elapsedTime) == 8, "the plain records have one layout");

TEST(PlatformTest, TimesOfAllYears) {
    for (std::string const text : {"1999/12/31 23:59", "2038/01/20 00:00", "2041/05/06 07:08", "2107/01/01 00:00"}) {
        TimeReturnMsg message;
        std::ranges::copy(text, message.startTime.begin());
        std::ranges::copy(std::string("123456:07'08"), message.elapsedTime.begin());
        TimeData const time = message;
        auto const start = static_cast<std::time_t>(time.startTimeEpoch);
        std::array<char, 32> shown{};
        std::strftime(shown.data(), shown.size(), "%Y/%m/%d %H:%M", std::localtime(&start));
        EXPECT_EQ(shown.data(), text);
        EXPECT_EQ(time.elapsedTime.hours, 123456U);
    }
}

TEST(PlatformTest, BytesAboveAsciiAreNeitherNegativeNorChanged) {
    std::vector<std::string> names;
    HelperFunction::SplitStringOnCLRF(names, "\xe9.JBI\r\nz.JBI\r\nA.JBI\r\n", true);
    EXPECT_EQ(names, (std::vector<std::string>{"A.JBI", "z.JBI", "\xe9.JBI"}));
    EXPECT_EQ(HelperFunction::ToUpper("a\xe9\xff"), "A\xe9\xff");

    ScriptedController controller;
    auto const manager = controller.Connect();
    VariablesImplementation variables(manager.get(), 1, 16);
    controller.Expect(RobotRequest(122, 4, 1, 14), Payload(U8(0xff)));
    ByteVariableData byte;
    EXPECT_EQ(variables.byteVariable->Read(4, byte).StatusCode, 0);
    EXPECT_EQ(int{byte.value}, 255);
}

TEST(PlatformTest, NumbersKeepSignAndWidth) {
    ScriptedController controller;
    auto const manager = controller.Connect();
    VariablesImplementation variables(manager.get(), 1, 16);
    for (std::int32_t const value : {-1, INT_MIN, INT_MAX, 0x01020304}) {
        controller.Expect(RobotRequest(124, 4, 1, 14), Payload(Words({value})));
        DoubleIntVariableData number;
        EXPECT_EQ(variables.doubleIntVariable->Read(4, number).StatusCode, 0);
        EXPECT_EQ(number.value, value);
    }
}

#if defined(HARVLINK_ALIGNMENT_TRAPS)
TEST(PlatformDeathTest, AnAccessThatIsNotAlignedEndsTheProgram) {
    alignas(8) std::array<std::byte, 16> bytes{};
    std::byte const* volatile place = bytes.data();
    EXPECT_EQ(*reinterpret_cast<std::int64_t const*>(place + 8), 0);
    for (std::size_t const offset : {1U, 2U, 4U}) {
        EXPECT_DEATH(EXPECT_EQ(*reinterpret_cast<std::int64_t const*>(place + offset), 0), "");
    }
}
#endif

} // namespace
} // namespace harvlink::test
