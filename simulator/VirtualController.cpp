#include "simulator/VirtualController.h"

#include <algorithm>
#include <cstring>

namespace harvlink::simulator {

namespace {

bool IsOfThisProtocol(CommonHeader const& header) {
    CommonHeader const expected;
    return header.magic == expected.magic && header.headerSize == expected.headerSize;
}

} // namespace

VirtualController::VirtualController(std::string address, ControllerOptions const& options)
    : address_(std::move(address)), clock_(options.timeScale), model_(options, clock_), dispatcher_(model_) {}

void VirtualController::Advance(Clock::Duration step) {
    ChangeNotice const notice{*this};
    std::scoped_lock const lock(mutex_);
    ActivityNote const note{*this};
    constexpr Clock::Duration Stride = std::chrono::milliseconds(1);
    while (step > Clock::Duration{0}) {
        auto const stride = model_.NeedsTicks() ? std::min(step, Stride) : step;
        clock_.Advance(stride);
        model_.Tick();
        step -= stride;
    }
}

TrafficCounts VirtualController::Traffic() {
    std::scoped_lock const lock(mutex_);
    return traffic_;
}

bool VirtualController::Handle(Port port, std::uint64_t peer, std::span<std::byte const> datagram, Reply& reply) {
    std::scoped_lock const lock(mutex_);
    Request request;
    if (datagram.size() >= HeaderSize) {
        std::memcpy(&request.header, datagram.data(), sizeof(request.header));
        std::memcpy(&request.subHeader, datagram.data() + sizeof(request.header), sizeof(request.subHeader));
    }
    if (datagram.size() < HeaderSize || !IsOfThisProtocol(request.header)) {
        ++traffic_.ignored;
        return false;
    }
    request.port = port;
    request.peer = peer;
    request.payload = datagram.subspan(HeaderSize);
    if (model_.NeedsTicks()) {
        model_.Tick();
    }
    dispatcher_.Handle(request, reply);
    active_.store(model_.NeedsTicks(), std::memory_order_relaxed);
    ++traffic_.requests;
    traffic_.refused += reply.IsRefused() ? 1 : 0;
    return true;
}

bool VirtualController::Tick() {
    std::scoped_lock const lock(mutex_);
    if (model_.NeedsTicks()) {
        model_.Tick();
    }
    active_ = model_.NeedsTicks();
    return active_;
}

} // namespace harvlink::simulator
