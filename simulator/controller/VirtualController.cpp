#include "simulator/controller/VirtualController.h"

#include <algorithm>

namespace harvlink::simulator {

VirtualController::VirtualController(std::string address, ControllerOptions const& options)
    : address_(std::move(address)), clock_(options.timeScale), parts_(options, clock_), dispatcher_(parts_) {
    faults_.SetPlan(options.faults);
}

void VirtualController::Advance(Clock::Duration step) {
    ChangeNotice const notice{*this};
    std::scoped_lock const lock(mutex_);
    ActiveUpdate const update{*this};
    constexpr Clock::Duration Stride = std::chrono::milliseconds(1);
    while (step > Clock::Duration{0}) {
        auto const stride = parts_.NeedsTicks() ? std::min(step, Stride) : step;
        clock_.Advance(stride);
        parts_.Tick();
        step -= stride;
    }
}

TrafficCounts VirtualController::Traffic() {
    std::scoped_lock const lock(mutex_);
    return traffic_;
}

Request const* VirtualController::Handle(Port port, std::uint64_t peer, std::span<std::byte const> datagram,
                                         Reply& reply) {
    std::scoped_lock const lock(mutex_);
    if (!request_.Parse(datagram)) {
        ++traffic_.ignored;
        return nullptr;
    }
    request_.port = port;
    request_.peer = peer;
    if (parts_.NeedsTicks()) {
        parts_.Tick();
    }
    faults_.NoteClient(request_);
    if (faults_.IsActive()) {
        AnswerWithFaults(reply);
    } else {
        CarryOut(reply);
    }
    UpdateActive();
    ++traffic_.requests;
    traffic_.refused += reply.IsRefused() ? 1 : 0;
    return &request_;
}

void VirtualController::CarryOut(Reply& reply) {
    if (!answerer_ || !answerer_->Answer(request_, reply)) {
        dispatcher_.Handle(request_, reply);
    }
}

void VirtualController::AnswerWithFaults(Reply& reply) {
    using Decision = FaultInjector::Decision;
    auto const now = clock_.Now();
    auto const decision = faults_.Decide(request_, now);
    if (decision == Decision::CarryOut) {
        CarryOut(reply);
    } else {
        reply.Begin(request_);
        reply.Refuse(faults_.RefusalCode());
    }
    if (decision == Decision::Restart) {
        parts_.model.SetServo(false);
        dispatcher_.ForgetTransfers();
    }
    if (decision == Decision::CarryOut || decision == Decision::Refuse) {
        faults_.ApplyToReply(request_, reply, now);
    }
    // The injector sends the reply.
    reply.Suppress();
}

bool VirtualController::Tick() {
    std::scoped_lock const lock(mutex_);
    if (parts_.NeedsTicks()) {
        parts_.Tick();
    }
    UpdateActive();
    return active_;
}

std::vector<Delivery> VirtualController::TakeDeliveries() {
    std::scoped_lock const lock(mutex_);
    auto due = faults_.TakeDue(clock_.Now());
    UpdateActive();
    return due;
}

} // namespace harvlink::simulator
