#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "fleet/Backoff.h"
#include "fleet/ChangeFilter.h"
#include "fleet/ControllerRecord.h"
#include "fleet/Edges.h"
#include "fleet/Lane.h"
#include "fleet/RoundSchedule.h"
#include "fleet/Services.h"
#include "fleet/StartUp.h"

namespace harvlink::fleet {

/// The engine's side of one controller: learns what it is, then reads its groups, and starts over when it has been silent.
/// All times are nanoseconds of the steady clock. Of the engine's thread.
class ControllerAgent {
public:
    static constexpr Poller::Token tokensPerAgent = 8;

    /// Its sockets have tokensPerAgent tokens, from `ownToken` on.
    ControllerAgent(std::shared_ptr<ControllerRecord> controller, Services& shared, Poller::Token ownToken);

    /// When the controller is asked for the first time.
    void BeginAt(std::int64_t time) { pauseEnd = time; }

    void OnReadable(Poller::Token token, std::int64_t now);
    void OnTime(std::int64_t now);

    /// When OnTime has to be called next.
    std::int64_t NextTime() const;

    /// Whether that is by its distance between requests, which a common tick would lengthen.
    bool KeepsDistance() const { return spacing > 0; }

    /// The engine did not run for so long. What arrived meanwhile has been read.
    void Excuse(std::int64_t nanoseconds);

    /// Closes the sockets. The values stay.
    void Halt(std::int64_t now);

private:
    enum class Phase : std::uint8_t { Pausing, StartingUp, Running };
    static constexpr unsigned fileLane = tokensPerAgent - 1;
    static constexpr unsigned silentAfter = 3; ///< time-outs in a row

    /// A lane and the items that its request reads.
    struct Worker {
        Worker(Services& shared, ControllerRecord& controller, Poller::Token token) : lane(shared, controller, token) {}

        Lane lane;
        bool hasWork = false;
        std::uint32_t begin = 0;
        std::uint32_t end = 0;
        unsigned part = 0;
        std::unique_ptr<std::array<std::byte, LargestRecord>> parts; ///< of an item that takes several exchanges
    };

    // The start-up.
    void BeginStartUp(std::int64_t now);
    void AskForStartUp(std::int64_t now);
    void AskForFile(std::int64_t now);
    void TakeForStartUp(std::int64_t now);
    void GoOnWithStartUp(std::int64_t now);
    void EndStartUp(std::int64_t now);
    void CompareFacts(std::int64_t now, ControllerFacts const& learnt);
    void RefuseItems(std::int64_t now);
    Lane& StartUpLane() { return file ? *file : workers.front()->lane; }

    // The link.
    void TakeOutcome(Lane::Outcome outcome, Worker* worker, std::int64_t now);
    /// A request is not sent again before the controller has had its rest.
    std::int64_t ExpiryOf(Lane const& lane) const { return std::max(lane.Deadline(), nextSend); }
    bool HasExpired(Lane const& lane, std::int64_t now) const { return lane.IsWaiting() && ExpiryOf(lane) <= now; }
    void Expire(Lane& lane, Worker* worker, std::int64_t now);
    void GoAway(FleetState state, std::int32_t code, std::int64_t now);
    void SetState(FleetState state, std::int32_t code, std::int64_t now);

    // The rounds.
    void Advance(std::int64_t now);
    bool Assign(Worker& worker, std::int64_t now);
    bool Ask(Worker& worker, std::int64_t now);
    void TakeAnswer(Worker& worker, std::int64_t now);
    std::uint32_t EndOfDatagram(std::uint32_t begin, std::uint32_t end) const;
    void SkipRefused(std::uint32_t group, std::int64_t now);
    void EndWork(Worker& worker, std::int64_t now);
    void BeginDueRounds(std::int64_t now);
    void EndRoundIfDone(std::uint32_t group, std::int64_t now);
    std::int64_t NextRound() const;

    // The values.
    Stamp StampOf(Worker const& worker, std::size_t size, std::int64_t now) const;
    void PublishAnswer(Worker const& worker, std::int64_t now);
    void Publish(std::uint32_t item, Stamp const& stamp, std::span<std::byte const> bytes);
    void PublishFailure(Worker const& worker, FleetQuality quality, std::int32_t code, std::int64_t now);
    void MarkStale(std::uint32_t item, std::int32_t code);
    void MarkAllStale(std::int32_t code);

    bool IsRefused(std::uint32_t item) const { return !refused.empty() && refused[item]; }

    std::shared_ptr<ControllerRecord> const record;
    Services& services;
    Poller::Token const firstToken;
    std::int64_t const spacing;
    WaitLimits const limits;
    Phase phase = Phase::Pausing;
    std::int64_t pauseEnd = 0;
    std::int64_t nextSend = 0; ///< no request before
    unsigned missesInARow = 0;
    Backoff backoff;
    Edges edges;
    ChangeFilter filter;

    struct Round {
        RoundSchedule schedule;
        std::uint32_t cursor = 0; ///< the item to be asked for next
        unsigned pending = 0; ///< workers that read items of it
    };
    std::vector<Round> rounds;
    std::vector<std::unique_ptr<Worker>> workers;
    std::unique_ptr<StartUp> startUp;
    std::unique_ptr<Lane> file;
    ControllerFacts facts;
    bool hasFacts = false;
    std::vector<bool> refused; ///< by item: the generation does not have it. Empty if it has all
};

} // namespace harvlink::fleet
