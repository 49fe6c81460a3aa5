#include "simulator/faults/FaultInjector.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

namespace harvlink::simulator {

namespace {

constexpr Refusal BufferIsFull{65520};
constexpr std::size_t IdOffset = offsetof(CommonHeader, requestId);
constexpr std::uint8_t IdMask = 0x7F;
constexpr std::size_t MostMisnumbered = 3;

std::size_t PortIndex(Port port) {
    return port == Port::Robot ? 0 : 1;
}

Delivery::Source SourceOf(Port port) {
    return port == Port::Robot ? Delivery::Source::RobotPort : Delivery::Source::FilePort;
}

} // namespace

void FaultInjector::SetPlan(FaultPlan const& plan) {
    plan_ = plan;
    random_.seed(plan.seed);
    silentUntil_ = {};
    bufferFullUntil_ = {};
    refusalsLeft_ = 0;
    UpdateActive();
}

void FaultInjector::Arm(Fault fault, std::uint32_t count) {
    armed_.at(static_cast<std::size_t>(fault)) = count;
    UpdateActive();
}

void FaultInjector::UpdateActive() {
    // Stays on once it was on, because a silence continues after the last armed fault has happened.
    isActive_ = isActive_ || std::ranges::any_of(plan_.rates, [](double rate) { return rate > 0; }) ||
                std::ranges::any_of(plan_.fileRates, [](auto const& rate) { return rate > 0.0; }) ||
                std::ranges::any_of(armed_, [](std::uint32_t count) { return count > 0; });
}

bool FaultInjector::Happens(Fault fault, Port port) {
    auto const index = static_cast<std::size_t>(fault);
    double const chance = std::uniform_real_distribution<>(0.0, 1.0)(random_);
    bool const isArmed = armed_.at(index) > 0;
    armed_[index] -= isArmed ? 1 : 0;
    bool const happens = isArmed || chance < plan_.RateOn(port, fault);
    happened_.at(index) += happens ? 1 : 0;
    lastHits_[index] = lastHits_[index] || happens;
    return happens;
}

std::size_t FaultInjector::Random(std::size_t lowest, std::size_t highest) {
    return std::uniform_int_distribution<std::size_t>(lowest, highest)(random_);
}

void FaultInjector::NoteClient(Request const& request) {
    auto& seen = clients_.at(PortIndex(request.port));
    seen.isOnlyOne = seen.isOnlyOne && (seen.peer == 0 || seen.peer == request.peer);
    seen.peer = request.peer;
}

FaultInjector::Decision FaultInjector::Decide(Request const& request, Clock::Duration now) {
    lastHits_.reset();
    if (now < silentUntil_) {
        NoteHit(Fault::Silence);
        return Decision::Ignore;
    }
    if (Happens(Fault::Silence, request.port)) {
        silentUntil_ = now + plan_.silence;
        return Decision::Ignore;
    }
    if (Happens(Fault::Restart, request.port)) {
        return Decision::Restart;
    }
    if (Happens(Fault::Refuse, request.port)) {
        refusalsLeft_ = plan_.refuseCount;
    }
    if (refusalsLeft_ > 0) {
        --refusalsLeft_;
        NoteHit(Fault::Refuse);
        refusal_ = plan_.refuseCode;
        return Decision::Refuse;
    }
    bool const isTarget = request.port == Port::Robot && request.Command() == CommandNumber::MotionSendTarget;
    if (isTarget && Happens(Fault::BufferFull, request.port)) {
        bufferFullUntil_ = now + plan_.bufferFull;
    }
    if (isTarget && now < bufferFullUntil_) {
        NoteHit(Fault::BufferFull);
        refusal_ = BufferIsFull;
        return Decision::Refuse;
    }
    return Decision::CarryOut;
}

void FaultInjector::ApplyToReply(Request const& request, Reply const& reply, Clock::Duration now) {
    if (reply.IsSuppressed()) {
        return;
    }
    bool const isDropped = Happens(Fault::Drop, request.port);
    Delivery delivery{SourceOf(request.port), request.peer, now, {}};
    delivery.due += Happens(Fault::Delay, request.port) ? plan_.delay : Clock::Duration{0};
    bool const isDoubled = Happens(Fault::Duplicate, request.port);
    bool const isHeldBack = Happens(Fault::Reorder, request.port);
    delivery.bytes.assign(reply.Bytes().begin(), reply.Bytes().end());
    CorruptBytes(delivery.bytes, request.port);
    ChangeRoute(request, delivery);
    Misnumber(delivery.bytes, request.port);
    if (isDropped) {
        return;
    }
    if (isHeldBack) {
        delivery.due = now + FaultPlan::ReorderLimit;
        heldBack_.push_back(std::move(delivery));
        return;
    }
    if (isDoubled) {
        outbox_.push_back(delivery);
    }
    outbox_.push_back(std::move(delivery));
    ReleaseOvertaken(request.peer, outbox_.back().due);
}

void FaultInjector::CorruptBytes(std::vector<std::byte>& bytes, Port port) {
    if (Happens(Fault::WrongId, port)) {
        bytes[IdOffset] ^= static_cast<std::byte>(Random(1, IdMask));
    }
    if (Happens(Fault::StaleId, port)) {
        bytes[IdOffset] = static_cast<std::byte>((std::to_integer<unsigned>(bytes[IdOffset]) + IdMask) & IdMask);
    }
    if (Happens(Fault::FlipBits, port)) {
        for (auto flips = Random(1, 8); flips > 0; --flips) {
            auto const bit = Random(0, bytes.size() * 8 - 1);
            bytes[bit / 8] ^= static_cast<std::byte>(1U << (bit % 8));
        }
    }
    bool const isCut = Happens(Fault::Truncate, port);
    if (isCut) {
        bytes.resize(Random(0, bytes.size() - 1));
    }
    // Never both: replacing the end by random bytes is another kind of fault.
    if (Happens(Fault::Extend, port) && !isCut) {
        std::generate_n(std::back_inserter(bytes), Random(1, 64),
                        [this] { return static_cast<std::byte>(Random(0, 255)); });
    }
}

void FaultInjector::Misnumber(std::vector<std::byte>& bytes, Port port) {
    CommonHeader header;
    // Without a draw where it is not asked for: a seed keeps the faults that it has always given.
    bool const isPlanned =
        plan_.RateOn(port, Fault::Misnumber) > 0 || armed_.at(static_cast<std::size_t>(Fault::Misnumber)) > 0;
    if (!isPlanned || !Happens(Fault::Misnumber, port) || bytes.size() < sizeof(header)) {
        return;
    }
    std::memcpy(&header, bytes.data(), sizeof(header));
    auto const number = header.blockNumber & ~LastBlockFlag;
    if (number == 0) {
        return; // not a block
    }
    auto const shift = static_cast<std::uint32_t>(Random(1, MostMisnumbered));
    bool const isLower = number > shift && Random(0, 1) == 0;
    header.blockNumber = (header.blockNumber & LastBlockFlag) | (isLower ? number - shift : number + shift);
    std::memcpy(bytes.data(), &header, sizeof(header));
}

void FaultInjector::ChangeRoute(Request const& request, Delivery& delivery) {
    if (Happens(Fault::OtherPort, request.port)) {
        auto const other = request.port == Port::Robot ? Port::File : Port::Robot;
        delivery.source = SourceOf(other);
        // Only with a single client is it known which sockets belong together.
        auto const& seen = clients_.at(PortIndex(other));
        bool const isKnown = seen.peer != 0 && seen.isOnlyOne && clients_.at(PortIndex(request.port)).isOnlyOne;
        delivery.peer = isKnown ? seen.peer : delivery.peer;
    }
    if (Happens(Fault::OtherSource, request.port)) {
        delivery.source = Delivery::Source::UnknownPort;
    }
}

void FaultInjector::ReleaseOvertaken(std::uint64_t peer, Clock::Duration now) {
    for (auto& held : heldBack_) {
        if (held.peer == peer) {
            held.due = now;
        }
    }
}

std::vector<Delivery> FaultInjector::TakeDue(Clock::Duration now) {
    std::vector<Delivery> due;
    // A held-back reply is sent after the reply that overtook it.
    for (auto* const list : {&outbox_, &heldBack_}) {
        auto const later =
            std::stable_partition(list->begin(), list->end(), [now](Delivery const& item) { return item.due <= now; });
        std::move(list->begin(), later, std::back_inserter(due));
        list->erase(list->begin(), later);
    }
    return due;
}

} // namespace harvlink::simulator
