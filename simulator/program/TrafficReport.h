#pragma once

#include <span>
#include <string>

#include "simulator/controller/VirtualController.h"

namespace harvlink::simulator {

/// What the controllers were asked and which faults happened to them, as JSON:
///
///     {"controllers": [{"address": "127.0.0.1", "requests": 9, "refused": 0, "ignored": 0, "faults": {"drop": 1, ...}}]}
///
/// Writes it to a file. False if that fails; errno tells why.
bool WriteTrafficReport(std::string const& path, std::span<VirtualController* const> controllers);

} // namespace harvlink::simulator
