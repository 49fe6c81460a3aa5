#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "Session.h"

namespace harvlink::fuzz {

/// What an operation is called with, straight from the input.
struct Arguments {
    std::uint8_t group = 1;
    std::uint8_t type = 0;
    std::uint8_t bit = 0;
    std::uint8_t tool = 0;
    std::uint16_t index = 1;
    std::uint16_t size = 3;
};

struct OperationGroup {
    std::string_view name;
    /// Calls operations that belong together, each once, and checks what their header promises of status and outputs.
    void (*run)(Session&, Arguments const&);
    /// A thread goes on using the connection: nothing else may be done with it.
    bool leavesThread = false;
};

/// Together every operation of the ten interfaces.
std::span<OperationGroup const> Operations();

} // namespace harvlink::fuzz
