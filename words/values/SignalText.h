#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "harvlink/IOInterface.h"
#include "harvlink/StatusInfo.h"

namespace harvlink::words {

inline constexpr char const* SignalHelp =
    "A signal is named by its address, such as 10010, or by class, group and bit, such as\n"
    "general-output:1.0; a range is written 10010..10027, general-output:1.0..3 or\n"
    "general-output:1..4; a byte or word by the address of its first signal or by class and\n"
    "group, such as general-output:1. Classes: general-input, general-output, external-input,\n"
    "external-output, network-input, network-output, specific-input, specific-output,\n"
    "interface-panel-input, auxiliary-relay, robot-control-status, pseudo-input.";

/// A signal as the user named it. The address of a class depends on the generation, so it takes a controller to resolve it.
struct SignalName {
    std::string text;
    std::optional<unsigned> address;
    IOType type{};
    std::uint16_t group = 0;
    std::optional<std::uint8_t> bit;
};

SignalName ParseSignal(std::string_view text);

/// A signal, or all of a range: addresses as "10010..10027", of which those exist that do not end in 8 or 9, bits as
/// "general-output:1.0..3", or groups as "general-output:1..4".
std::vector<SignalName> ParseSignalRange(std::string_view text);

/// A register by its number, or all of a range such as "0..9".
std::vector<std::uint16_t> ParseRegisterRange(std::string_view text);

struct Signal {
    std::string name; ///< as the user named it, with its bit
    unsigned address = 0;
};

/// The signals of a name: one, or all eight if it is a group without a bit.
StatusInfo ResolveSignals(IOInterface& io, SignalName const& name, std::vector<Signal>& signals);

/// The address of a byte or word.
StatusInfo ResolveGroup(IOInterface& io, SignalName const& name, unsigned& address);

bool ParseOnOff(std::string_view text);

} // namespace harvlink::words
