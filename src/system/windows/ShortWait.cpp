#include "system/windows/ShortWait.h"

#include <algorithm>
#include <cstdint>
#include <limits>

// clang-format off
#include <windows.h>
#include <mmsystem.h>
// clang-format on

namespace harvlink {
namespace {

constexpr int coarse = 50; ///< milliseconds from which on 15 more do not matter
constexpr unsigned finest = 1; ///< milliseconds

int CeilMilliseconds(std::chrono::nanoseconds wait) {
    constexpr std::int64_t most = std::numeric_limits<int>::max();
    auto const rounded = std::chrono::ceil<std::chrono::milliseconds>(wait).count();
    return static_cast<int>(std::clamp<std::int64_t>(rounded, 0, most));
}

} // namespace

ShortWait::ShortWait(std::chrono::nanoseconds wait)
    : milliseconds(CeilMilliseconds(wait)),
      isFine(milliseconds > 0 && milliseconds < coarse && ::timeBeginPeriod(finest) == TIMERR_NOERROR) {}

ShortWait::~ShortWait() {
    if (isFine) {
        ::timeEndPeriod(finest);
    }
}

} // namespace harvlink
