#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <utility>

#include "simulator/base/Clock.h"
#include "simulator/controller/ControllerOptions.h"
#include "simulator/controller/ControllerParts.h"
#include "simulator/controller/Dispatcher.h"
#include "simulator/faults/FaultInjector.h"
#include "simulator/protocol/Answerer.h"

namespace harvlink::simulator {

/// The counters of a controller since it was created.
struct TrafficCounts {
    std::uint64_t requests = 0; ///< datagrams of this protocol
    std::uint64_t refused = 0; ///< requests that were answered with an error code
    std::uint64_t ignored = 0; ///< datagrams of another protocol, which are not answered
};

/// One controller: its parts, its clock, and the way from a datagram to an answer. The server has the sockets.
class VirtualController {
public:
    VirtualController(std::string address, ControllerOptions const& options);

    std::string const& Address() const { return address_; }

    /// Calls `function` with the model, locked against the server, and returns its result. Changes take effect at once,
    /// also for running jobs and motion.
    template <typename Function>
    decltype(auto) With(Function&& function) {
        return WithParts(
            [&](ControllerParts& parts) -> decltype(auto) { return std::forward<Function>(function)(parts.model); });
    }

    /// The same for a function that needs files, jobs or motion.
    template <typename Function>
    decltype(auto) WithParts(Function&& function) {
        ChangeNotice const notice{*this};
        std::scoped_lock const lock(mutex_);
        ActiveUpdate const update{*this};
        return std::forward<Function>(function)(parts_);
    }

    /// Calls `function` with the fault injector, under the same lock.
    template <typename Function>
    decltype(auto) WithFaults(Function&& function) {
        std::scoped_lock const lock(mutex_);
        return std::forward<Function>(function)(faults_);
    }

    /// Lets something else answer first. Before the server starts.
    void SetAnswerer(std::unique_ptr<Answerer> answerer) { answerer_ = std::move(answerer); }

    /// Advances the clock in steps of a millisecond, and jobs and motion with it.
    void Advance(Clock::Duration step);

    TrafficCounts Traffic();

    /// The server sets it. Called after With, from any thread, because Tick may be needed then.
    void SetChangeListener(std::function<void()> listener) { changed_ = std::move(listener); }

    /// Answers one datagram into `reply`. Returns the request, which is valid until the next call. Null if the datagram
    /// is not of this protocol; it must not be answered.
    Request const* Handle(Port port, std::uint64_t peer, std::span<std::byte const> datagram, Reply& reply);

    /// Lets jobs and motion advance. Returns whether Tick or TakeDeliveries are needed again.
    bool Tick();

    /// The datagrams to be sent besides the replies of Handle. Only faults cause them.
    std::vector<Delivery> TakeDeliveries();

    /// Whether Tick and TakeDeliveries are needed, as of the last datagram or change. May be called from any thread.
    bool IsActive() const { return active_; }

private:
    /// Both act when they go out of scope: the update under the lock, the notice after it.
    struct ActiveUpdate {
        VirtualController& controller;
        ~ActiveUpdate() { controller.UpdateActive(); }
    };
    struct ChangeNotice {
        VirtualController& controller;
        ~ChangeNotice() {
            if (controller.changed_) {
                controller.changed_();
            }
        }
    };

    void CarryOut(Reply& reply);
    void AnswerWithFaults(Reply& reply);
    void UpdateActive() { active_.store(parts_.NeedsTicks() || faults_.HasDeliveries(), std::memory_order_relaxed); }

    std::string address_;
    std::mutex mutex_;
    Clock clock_;
    ControllerParts parts_;
    Dispatcher dispatcher_;
    std::unique_ptr<Answerer> answerer_;
    FaultInjector faults_;
    Request request_;
    TrafficCounts traffic_;
    std::function<void()> changed_;
    std::atomic<bool> active_ = false;
};

} // namespace harvlink::simulator
