#pragma once

#include <string>

namespace harvlink::test {

/// Returns another address of 127.0.0.0/8 at each call. The addresses are scattered, so that parallel tests rarely get the
/// same; a test that finds its ports in use takes the next. Never returns an address that a test has as a constant.
std::string NextLoopbackAddress();

} // namespace harvlink::test
