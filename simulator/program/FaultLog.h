#pragma once

#include <fstream>
#include <string>

#include "simulator/controller/VirtualController.h"

namespace harvlink::simulator {

/// The requests that faults have hit, as they happen, a line of JSON for each:
///
///     {"time": 1700000000.123456, "controller": "127.0.0.1", "port": 10040, "command": 114, "instance": 1, "service": 1,
///      "faults": ["flip-bits"]}
///
/// A line is in the file before the answer that the fault changed is sent, so that a client can look up what hit it.
class FaultLog {
public:
    /// Throws std::system_error if the file can't be written.
    explicit FaultLog(std::string const& path);

    void Write(VirtualController& controller, Request const& request);

private:
    std::ofstream file_;
};

} // namespace harvlink::simulator
