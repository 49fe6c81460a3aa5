#pragma once

#include <optional>
#include <string>

namespace harvlink::gateway {

struct Arguments {
    std::string config;
    bool check = false;
    bool printExample = false;
    unsigned simulate = 0; ///< virtual controllers; 0: none
};

/// The command line. Nothing, with the exit status in `exitStatus`, if it ends here: help, version, wrong usage.
std::optional<Arguments> ParseArguments(int argc, char** argv, int& exitStatus);

} // namespace harvlink::gateway
