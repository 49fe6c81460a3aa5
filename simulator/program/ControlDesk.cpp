#include "simulator/program/ControlDesk.h"

#include <cerrno>
#include <cstring>

#include <fmt/format.h>
#include <poll.h>
#include <sys/signalfd.h>

#include "simulator/control/ControlCommands.h"

namespace harvlink::simulator {

ControlDesk::ControlDesk(std::span<VirtualController* const> controllers, ControllerOptions options)
    : options_(std::move(options)) {
    for (auto* const controller : controllers) {
        if (auto control = ControlSocket::Listen(controller->Address()); control.IsOpen()) {
            controls_.emplace_back(std::move(control), controller);
        } else {
            fmt::print(stderr, "harvlink-sim: {} can't be driven by harvlink-sim ctl: {}\n", controller->Address(),
                       std::strerror(errno));
        }
    }
}

void ControlDesk::ServeUntil(sigset_t const& signals) const {
    Descriptor const end(signalfd(-1, &signals, SFD_CLOEXEC));
    if (!end.IsOpen()) {
        int received = 0;
        sigwait(&signals, &received);
        return;
    }
    std::vector<pollfd> watched{{end.Get(), POLLIN, 0}};
    for (auto const& [control, controller] : controls_) {
        watched.push_back({control.Get(), POLLIN, 0});
    }
    while (poll(watched.data(), watched.size(), -1) >= 0 || errno == EINTR) {
        if (watched[0].revents != 0) {
            return;
        }
        for (std::size_t i = 0; i < controls_.size(); ++i) {
            if (watched[i + 1].revents != 0) {
                auto& controller = *controls_[i].second;
                controls_[i].first.Serve([&](auto words) { return RunControlCommand(controller, options_, words); });
            }
        }
    }
}

} // namespace harvlink::simulator
