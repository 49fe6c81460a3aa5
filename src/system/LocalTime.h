#pragma once

#include <ctime>

namespace harvlink {

/// A moment by the clock on the wall here. From any thread.
std::tm LocalTime(std::time_t moment);

} // namespace harvlink
