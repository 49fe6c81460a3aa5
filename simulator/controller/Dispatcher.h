#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "simulator/controller/ControllerParts.h"
#include "simulator/handlers/CommandHandler.h"
#include "simulator/protocol/Catalogue.h"

namespace harvlink::simulator {

/// Finds the handler of a request, after refusing what no handler needs to see.
class Dispatcher {
public:
    explicit Dispatcher(ControllerParts& parts);

    void Handle(Request const& request, Reply& reply);

    /// Forgets open file transfers, as a controller that is restarted does.
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
