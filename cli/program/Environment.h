#pragma once

#include <string>

namespace harvlink::cli {

/// In UTF-8; empty if there is no such variable.
std::string EnvironmentVariable(char const* name);

} // namespace harvlink::cli
