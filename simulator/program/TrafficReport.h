#pragma once

#include <span>
#include <string>

#include "simulator/controller/VirtualController.h"

namespace harvlink::simulator {

/// The numbers of requests and faults of each controller, as JSON:
///
///     {"controllers": [{"address": "127.0.0.1", "requests": 9, "refused": 0, "ignored": 0, "faults": {"drop": 1, ...}}]}
///
/// Writes it to a file. False on failure; errno gives the reason.
/// Whether the file can be written; makes an empty one if there is none. False sets errno.
bool CanWriteTrafficReport(std::string const& path);

bool WriteTrafficReport(std::string const& path, std::span<VirtualController* const> controllers);

} // namespace harvlink::simulator
