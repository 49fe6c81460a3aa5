#pragma once

#include <csignal>
#include <span>
#include <utility>
#include <vector>

#include "simulator/control/ControlSocket.h"
#include "simulator/controller/VirtualController.h"

namespace harvlink::simulator {

/// Carries out the commands of `harvlink-sim ctl` for the controllers of this program.
class ControlDesk {
public:
    /// Listens for each controller. One for which that fails can't be driven, and a warning says so.
    ControlDesk(std::span<VirtualController* const> controllers, ControllerOptions options);

    /// Serves until one of the signals comes, which must be blocked.
    void ServeUntil(sigset_t const& signals) const;

private:
    std::vector<std::pair<ControlSocket, VirtualController*>> controls_;
    ControllerOptions options_;
};

} // namespace harvlink::simulator
