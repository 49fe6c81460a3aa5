#include "cli/program/Environment.h"

#include <cstdlib>

namespace harvlink::cli {

std::string EnvironmentVariable(char const* name) {
    char const* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

} // namespace harvlink::cli
