#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "Session.h"

namespace harvlink::fuzz {

/// The arguments of an operation, taken from the input.
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
    /// Calls each operation of the group once, and checks status and outputs against the header.
    void (*run)(Session&, Arguments const&);
    /// A thread continues to use the connection, so nothing else may use it afterwards.
    bool leavesThread = false;
};

/// Groups with all operations of the ten interfaces.
std::span<OperationGroup const> Operations();

} // namespace harvlink::fuzz
