#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <vector>

#include "simulator/controller/VirtualController.h"
#include "wire/DatagramTransport.h"

namespace harvlink::test {

/// Connects the library to a virtual controller without a network. A reply that a fault drops is missed at once, without
/// waiting for the time-out. The arm moves only to make room in a full buffer, so that every run is the same.
class VirtualTransport final : public DatagramTransport {
public:
    struct Exchange {
        unsigned command = 0;
        unsigned id = 0;
        int firstAxis = 0; ///< of a target
        bool isFull = false; ///< the buffer had no room for the target
        bool isLost = false; ///< the reply is lost
    };
    using Exchanges = std::vector<Exchange>;

    explicit VirtualTransport(simulator::VirtualController& target) : controller(target) {}

    void Send(Division division, std::span<std::byte const> datagram) override {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return !isHeld; });
        auto const port = division == Division::FileControl ? simulator::Port::File : simulator::Port::Robot;
        auto const* const request = controller.Handle(port, 1, datagram, reply);
        auto const late = controller.TakeDeliveries();
        answer.clear();
        if (!reply.IsSuppressed()) {
            answer.assign(reply.Bytes().begin(), reply.Bytes().end());
        } else if (!late.empty()) {
            answer = late.front().bytes;
        }
        bool const isTarget = request->Command() == CommandNumber::MotionSendTarget;
        bool const isFull = isTarget && reply.Code() == simulator::Refusal{65520};
        exchanges.push_back({request->subHeader.command, request->header.requestId,
                             isTarget ? request->As<MotionTargetSend>().targets[0].axes[0] : 0, isFull,
                             answer.empty()});
        if (isFull) {
            controller.Advance(std::chrono::milliseconds(200));
        }
        changed.notify_all();
    }

    Arrival Receive(Division, std::span<std::byte> buffer, timeval) override {
        auto const length = std::min(buffer.size(), answer.size());
        std::copy_n(answer.begin(), length, buffer.begin());
        return std::exchange(answer, {}).size();
    }

    /// Makes exchanges wait, and clears the list of earlier ones.
    void Hold() {
        std::lock_guard const lock(mutex);
        isHeld = true;
        exchanges.clear();
    }

    /// Lets them continue, and returns all of them once `isOver` returns true for them.
    Exchanges Release(std::function<bool(Exchanges const&)> const& isOver) {
        std::unique_lock lock(mutex);
        isHeld = false;
        changed.notify_all();
        changed.wait_for(lock, std::chrono::seconds(30), [&] { return isOver(exchanges); });
        return exchanges;
    }

private:
    simulator::VirtualController& controller;
    simulator::Reply reply;
    std::vector<std::byte> answer;
    std::mutex mutex;
    std::condition_variable changed;
    Exchanges exchanges;
    bool isHeld = false;
};

} // namespace harvlink::test
