#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <span>
#include <string>
#include <utility>

#include "simulator/base/Clock.h"
#include "simulator/controller/ControllerOptions.h"
#include "simulator/controller/ControllerParts.h"
#include "simulator/controller/Dispatcher.h"
#include "simulator/faults/FaultInjector.h"

namespace harvlink::simulator {

/// What a controller counted since it was made.
struct TrafficCounts {
    std::uint64_t requests = 0; ///< datagrams of this protocol
    std::uint64_t refused = 0; ///< of these, how many got an error code
    std::uint64_t ignored = 0; ///< datagrams that are not of this protocol: nobody answers them
};

/// One controller: its model, its clock, and the road from a datagram to an answer. Sockets are the server's.
class VirtualController {
public:
    VirtualController(std::string address, ControllerOptions const& options);

    std::string const& Address() const { return address_; }

    /// Calls `function` with the model, locked against the server, and returns what it returns. What changed takes effect
    /// at once, running jobs and motion included.
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
        ActivityNote const note{*this};
        return std::forward<Function>(function)(parts_);
    }

    /// Calls `function` with the fault injector, under the same lock.
    template <typename Function>
    decltype(auto) WithFaults(Function&& function) {
        std::scoped_lock const lock(mutex_);
        return std::forward<Function>(function)(faults_);
    }

    /// Moves the clock forward by hand, in steps of a millisecond, and lets jobs and motion follow.
    void Advance(Clock::Duration step);

    TrafficCounts Traffic();

    /// Called from any thread after With, when there may be something to tick. The server sets it.
    void SetChangeListener(std::function<void()> listener) { changed_ = std::move(listener); }

    /// Answers one datagram into `reply`. Null if it is not of this protocol and must stay unanswered; otherwise the
    /// request, which is valid until the next call.
    Request const* Handle(Port port, std::uint64_t peer, std::span<std::byte const> datagram, Reply& reply);

    /// Lets jobs and motion advance. Returns whether Tick or TakeDeliveries are needed again.
    bool Tick();

    /// What is due to go out besides the replies of Handle: only faults send such.
    std::vector<Delivery> TakeDeliveries();

    /// Whether Tick and TakeDeliveries are needed, as of the last datagram or change. May be asked from any thread.
    bool IsActive() const { return active_; }

private:
    /// Both act when they go out of scope: the note still under the lock, the notice after it.
    struct ActivityNote {
        VirtualController& controller;
        ~ActivityNote() { controller.NoteActivity(); }
    };
    struct ChangeNotice {
        VirtualController& controller;
        ~ChangeNotice() {
            if (controller.changed_) {
                controller.changed_();
            }
        }
    };

    bool Parse(std::span<std::byte const> datagram);
    void AnswerWithFaults(Reply& reply);
    void NoteActivity() { active_.store(parts_.NeedsTicks() || faults_.HasDeliveries(), std::memory_order_relaxed); }

    std::string address_;
    std::mutex mutex_;
    Clock clock_;
    ControllerParts parts_;
    Dispatcher dispatcher_;
    FaultInjector faults_;
    Request request_;
    TrafficCounts traffic_;
    std::function<void()> changed_;
    std::atomic<bool> active_ = false;
};

} // namespace harvlink::simulator
