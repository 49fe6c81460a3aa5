#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <random>
#include <vector>

#include "simulator/base/Clock.h"
#include "simulator/faults/Delivery.h"
#include "simulator/faults/FaultPlan.h"
#include "simulator/protocol/Reply.h"
#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

/// Injects faults of a controller and of its network, at random (SetPlan) or on request (Arm). Each fault takes one
/// random number, in the order of Fault, so that the same seed gives the same faults.
class FaultInjector {
public:
    /// What happens to a request.
    enum class Decision : std::uint8_t { CarryOut, Ignore, Refuse, Restart };

    /// Starts the sequence of the plan's seed from its beginning, and ends a silence or a row of refusals that goes on.
    void SetPlan(FaultPlan const& plan);
    FaultPlan const& Plan() const { return plan_; }

    /// Injects this fault into the next `count` requests, whatever its rate is.
    void Arm(Fault fault, std::uint32_t count = 1);

    /// How often a fault has happened.
    std::uint64_t Happened(Fault fault) const { return happened_.at(static_cast<std::size_t>(fault)); }

    /// The faults that hit the request of the last Decide, by Fault. A silence hits every request that it leaves unanswered.
    std::bitset<FaultKinds> LastHits() const { return lastHits_; }

    /// Whether Decide and ApplyToReply have to be called.
    bool IsActive() const { return isActive_; }

    /// Must be called for every request, with or without faults.
    void NoteClient(Request const& request);

    /// Called before a request is carried out. After `Refuse`, RefusalCode is the code of the answer.
    Decision Decide(Request const& request, Clock::Duration now);
    Refusal RefusalCode() const { return refusal_; }

    /// Queues a reply with the faults that hit it.
    void ApplyToReply(Request const& request, Reply const& reply, Clock::Duration now);

    /// Whether datagrams are waiting to be sent.
    bool HasDeliveries() const { return !outbox_.empty() || !heldBack_.empty(); }

    /// Takes the datagrams that are due. A held-back reply is also due as soon as another one has overtaken it.
    std::vector<Delivery> TakeDue(Clock::Duration now);

private:
    /// The last client on a port, and whether it is the only one so far.
    struct ClientsSeen {
        std::uint64_t peer = 0;
        bool isOnlyOne = true;
    };

    bool Happens(Fault fault, Port port);
    void NoteHit(Fault fault) { lastHits_.set(static_cast<std::size_t>(fault)); }
    void UpdateActive();
    std::size_t Random(std::size_t lowest, std::size_t highest);
    void CorruptBytes(std::vector<std::byte>& bytes, Port port);
    void Misnumber(std::vector<std::byte>& bytes, Port port);
    void ChangeRoute(Request const& request, Delivery& delivery);
    void ReleaseOvertaken(std::uint64_t peer, Clock::Duration now);

    FaultPlan plan_;
    std::mt19937_64 random_{1};
    std::array<std::uint32_t, FaultKinds> armed_{};
    std::array<std::uint64_t, FaultKinds> happened_{};
    std::bitset<FaultKinds> lastHits_;
    std::vector<Delivery> outbox_;
    std::vector<Delivery> heldBack_;
    std::array<ClientsSeen, 2> clients_{}; ///< on the robot port and on the file port
    Clock::Duration silentUntil_{0};
    Clock::Duration bufferFullUntil_{0};
    std::uint32_t refusalsLeft_ = 0;
    Refusal refusal_ = Refusal::None;
    bool isActive_ = false;
};

} // namespace harvlink::simulator
