#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "harvlink/ControllerVersion.h"
#include "harvlink/IOInterface.h"

namespace harvlink::simulator {

/// The signal groups of a class. A group has eight signals; its number is their address divided by ten.
struct SignalRange {
    std::uint16_t first = 0;
    std::uint16_t last = 0;
};

SignalRange SignalRangeOf(IOType type, ControllerVersion generation);

/// All signals, one byte per group. The last digit of a signal's address is its bit, 0 to 7.
class Signals {
public:
    explicit Signals(ControllerVersion generation);

    /// The class of a signal group. Nothing if this generation has no such group.
    std::optional<IOType> TypeOf(std::uint32_t group) const;

    /// Nothing if the group doesn't exist.
    std::optional<std::uint8_t> ReadGroup(std::uint32_t group) const;
    bool WriteGroup(std::uint32_t group, std::uint8_t value);

    /// Nothing or false if the signal doesn't exist.
    std::optional<bool> Read(std::uint32_t address) const;
    bool Write(std::uint32_t address, bool value);

private:
    static constexpr std::size_t Classes = 12;
    static constexpr std::size_t GroupLimit = 10000;
    static constexpr std::uint8_t NoClass = 0xFF;

    std::vector<std::uint8_t> values_;
    std::vector<std::uint8_t> classes_;
};

} // namespace harvlink::simulator
