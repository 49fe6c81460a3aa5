#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "harvlink/Fleet.h"
#include "simulator/network/Server.h"
#include "support/LoopbackAddress.h"

namespace harvlink::test {

using namespace std::chrono_literals;
using simulator::ControllerOptions;
using simulator::VirtualController;

/// Virtual controllers "c0", "c1" and so on in one process, and a fleet to watch them.
class FleetRig {
public:
    explicit FleetRig(std::size_t count, std::function<ControllerOptions(std::size_t)> const& optionsOf = {}) {
        for (int attempt = 0; attempt < 10; ++attempt) {
            server = std::make_unique<simulator::Server>();
            controllers.clear();
            for (std::size_t i = 0; i < count; ++i) {
                controllers.push_back(
                    &server->Add(NextLoopbackAddress(), optionsOf ? optionsOf(i) : ControllerOptions{}));
            }
            if (server->Start()) {
                return;
            }
        }
        throw std::runtime_error(server->Error());
    }

    static std::string NameOf(std::size_t number) { return "c" + std::to_string(number); }

    FleetControllerOptions OptionsOf(std::size_t number, unsigned timeout = 200) const {
        return {.address = controllers[number]->Address(), .timeout = timeout, .retries = 1};
    }

    /// Adds all controllers with the same groups, and starts.
    StatusInfo Watch(std::vector<FleetGroup> const& groups, unsigned timeout = 200) {
        for (std::size_t i = 0; i < controllers.size(); ++i) {
            if (StatusInfo status = fleet.Add(NameOf(i), OptionsOf(i, timeout), groups); status.StatusCode != 0) {
                return status;
            }
        }
        return fleet.Start();
    }

    /// Takes samples until one is as wanted. False if none came in time.
    template <typename Wanted>
    bool Await(Wanted const& wanted, std::chrono::milliseconds time = 10s) {
        auto const end = std::chrono::steady_clock::now() + time;
        while (std::chrono::steady_clock::now() < end) {
            if (fleet.Take(std::span(&last, 1), 100ms) == 1 && wanted(last)) {
                return true;
            }
        }
        return false;
    }

    template <typename Wanted>
    bool AwaitEvent(Wanted const& wanted, std::chrono::milliseconds time = 10s) {
        auto const end = std::chrono::steady_clock::now() + time;
        while (std::chrono::steady_clock::now() < end) {
            if (fleet.TakeEvents(std::span(&lastEvent, 1), 100ms) == 1 && wanted(lastEvent)) {
                return true;
            }
        }
        return false;
    }

    bool AwaitEvent(FleetEventKind kind) {
        return AwaitEvent([&](FleetEvent const& event) { return event.kind == kind; });
    }

    bool AwaitState(std::size_t number, FleetState state, std::chrono::milliseconds time = 10s) {
        return AwaitEvent(
            [&](FleetEvent const& event) {
                return event.kind == FleetEventKind::StateChanged && event.controller == NameOf(number) &&
                       event.after == static_cast<int>(state);
            },
            time);
    }

    FleetControllerStatistics Of(std::size_t number) const {
        auto const seen = fleet.Statistics().controllers;
        return *std::ranges::find(seen, NameOf(number), &FleetControllerStatistics::controller);
    }

    std::unique_ptr<simulator::Server> server;
    std::vector<VirtualController*> controllers;
    Fleet fleet;
    FleetSample last;
    FleetEvent lastEvent;
};

} // namespace harvlink::test
