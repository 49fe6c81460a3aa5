#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <vector>

#include "simulator/base/Clock.h"
#include "simulator/faults/Delivery.h"
#include "simulator/faults/FaultPlan.h"
#include "simulator/protocol/Reply.h"
#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

/// Makes a controller and the network before it misbehave, by chance (SetPlan) or to order (Arm). Faults are drawn in the
/// order of Fault with one number each, so that a seed repeats them.
class FaultInjector {
public:
    /// What becomes of a request.
    enum class Verdict : std::uint8_t { CarryOut, Ignore, Refuse, Restart };

    /// Starts the sequence of the plan's seed from its beginning.
    void SetPlan(FaultPlan const& plan);
    FaultPlan const& Plan() const { return plan_; }

    /// The next `count` requests meet this fault, whatever its rate.
    void Arm(Fault fault, std::uint32_t count = 1);

    /// How often a fault has happened.
    std::uint64_t Happened(Fault fault) const { return happened_.at(static_cast<std::size_t>(fault)); }

    /// Whether Judge and Spoil have anything to do.
    bool IsActive() const { return isActive_; }

    /// Every request, whether anything goes wrong or not.
    void NoteHeard(Request const& request);

    /// Before a request is carried out. With `Refuse`, RefusalCode is what to answer.
    Verdict Judge(Request const& request, Clock::Duration now);
    Refusal RefusalCode() const { return refusal_; }

    /// Turns a reply into what really goes out, now or later.
    void Spoil(Request const& request, Reply const& reply, Clock::Duration now);

    /// Whether something is still to go out.
    bool HasDeliveries() const { return !outbox_.empty() || !heldBack_.empty(); }

    /// Hands over what is due. Nothing is due before its time, unless a reply that was held back has been overtaken.
    std::vector<Delivery> TakeDue(Clock::Duration now);

private:
    /// Who was heard on a port: the last one, and whether all that was heard came from there.
    struct Heard {
        std::uint64_t peer = 0;
        bool isOnlyOne = true;
    };

    bool Happens(Fault fault, Port port);
    void UpdateActive();
    std::size_t Random(std::size_t lowest, std::size_t highest);
    void SpoilBytes(std::vector<std::byte>& bytes, Port port);
    void SpoilRoute(Request const& request, Delivery& delivery);
    void ReleaseOvertaken(std::uint64_t peer, Clock::Duration now);

    FaultPlan plan_;
    std::mt19937_64 random_{1};
    std::array<std::uint32_t, FaultKinds> armed_{};
    std::array<std::uint64_t, FaultKinds> happened_{};
    std::vector<Delivery> outbox_;
    std::vector<Delivery> heldBack_;
    std::array<Heard, 2> heard_{}; ///< on the robot port and on the file port
    Clock::Duration silentUntil_{0};
    Clock::Duration bufferFullUntil_{0};
    std::uint32_t refusalsLeft_ = 0;
    Refusal refusal_ = Refusal::None;
    bool isActive_ = false;
};

} // namespace harvlink::simulator
