#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "simulator/controller/ControllerParts.h"
#include "simulator/handlers/CommandHandler.h"
#include "simulator/protocol/Catalogue.h"

namespace harvlink::simulator {

/// Refuses requests that no handler needs to see, and passes the others to their handlers.
class Dispatcher {
public:
    explicit Dispatcher(ControllerParts& parts);

    void Handle(Request const& request, Reply& reply);

    /// Drops open file transfers, as a restart does.
    void ForgetTransfers();

private:
    void Add(std::unique_ptr<CommandHandler> handler);
    void HandleRobotPort(Request const& request, Reply& reply);
    void HandleFilePort(Request const& request, Reply& reply);

    ControllerParts& parts_;
    std::vector<std::unique_ptr<CommandHandler>> handlers_;
    std::array<CommandHandler*, CommandLimit> byCommand_{};
    std::unique_ptr<CommandHandler> fileHandler_;
};

} // namespace harvlink::simulator
