#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

#include "soak/ProcessFigures.h"

namespace harvlink::soak {

/// A running harvlink-sim. The destructor ends it.
class SimulatorProcess {
public:
    /// Returns when it is ready. Throws std::runtime_error if it ends before that.
    SimulatorProcess(std::string name, std::vector<std::string> const& command);
    SimulatorProcess(SimulatorProcess const&) = delete;
    SimulatorProcess& operator=(SimulatorProcess const&) = delete;
    ~SimulatorProcess();

    ProcessFigures Figures() const;

    /// Asks it to end and waits for it. False if it ended in any other way.
    bool Stop();

private:
    std::string name_;
    pid_t process_ = -1;
};

} // namespace harvlink::soak
