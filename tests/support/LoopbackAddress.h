#pragma once

#include <string>

namespace harvlink::test {

/// Another address of 127.0.0.0/8 at each call, scattered so that tests in parallel seldom get the same: who finds its
/// ports taken takes the next. Stays away from the addresses that are written by hand.
std::string NextLoopbackAddress();

} // namespace harvlink::test
