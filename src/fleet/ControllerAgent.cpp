#include "fleet/ControllerAgent.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "fleet/DueHeap.h"

namespace harvlink::fleet {
ControllerAgent::ControllerAgent(std::shared_ptr<ControllerRecord> controller, Services& shared, Poller::Token ownToken)
    : record(std::move(controller)),
      services(shared),
      firstToken(ownToken),
      spacing(record->Spacing()),
      limits{.timeout = std::chrono::nanoseconds(std::chrono::milliseconds(record->options.timeout)).count(),
             .retries = record->options.retries},
      backoff(ownToken),
      edges(shared.events, record->id),
      filter(*record) {
    for (Group& group : record->groups) {
        rounds.push_back({RoundSchedule(group)});
    }
    bool const takesParts = std::ranges::any_of(record->items, [](Item const& item) { return item.Parts() > 1; });
    for (unsigned i = 0; i < record->options.lanes; ++i) {
        Worker& worker = *workers.emplace_back(std::make_unique<Worker>(services, *record, firstToken + i));
        if (takesParts) {
            worker.parts = std::make_unique<std::array<std::byte, LargestRecord>>();
        }
    }
}

void ControllerAgent::OnReadable(Poller::Token token, std::int64_t now) {
    unsigned const number = token - firstToken;
    if (number == fileLane) {
        if (file) {
            TakeOutcome(file->Receive(now), nullptr, now);
        }
        return;
    }
    Worker& worker = *workers[number];
    if (worker.lane.IsOpen()) {
        TakeOutcome(worker.lane.Receive(now), &worker, now);
    }
}

void ControllerAgent::TakeOutcome(Lane::Outcome outcome, Worker* worker, std::int64_t now) {
    if (outcome == Lane::Outcome::NotListening) {
        GoAway(FleetState::Refused, static_cast<std::int32_t>(ErrorStatusCodes::ControllerNotListening), now);
        return;
    }
    if (outcome == Lane::Outcome::Nothing) {
        return;
    }
    missesInARow = 0;
    if (phase == Phase::StartingUp) {
        TakeForStartUp(now);
        return;
    }
    if (record->state.load(std::memory_order_relaxed) == FleetState::Late) {
        SetState(FleetState::Online, 0, now);
    }
    TakeAnswer(*worker, now);
    Advance(now);
}

void ControllerAgent::OnTime(std::int64_t now) {
    if (phase == Phase::Pausing) {
        if (now >= pauseEnd) {
            BeginStartUp(now);
        }
        return;
    }
    if (phase == Phase::StartingUp) {
        if (Lane& lane = StartUpLane(); HasExpired(lane, now)) {
            Expire(lane, nullptr, now);
        } else if (!lane.IsWaiting()) {
            AskForStartUp(now);
        }
        return;
    }
    for (std::size_t i = 0; i < workers.size() && phase == Phase::Running; ++i) {
        if (Lane& lane = workers[i]->lane; HasExpired(lane, now)) {
            Expire(lane, workers[i].get(), now);
        }
    }
    if (phase == Phase::Running) {
        Advance(now);
    }
}

void ControllerAgent::Expire(Lane& lane, Worker* worker, std::int64_t now) {
    ++missesInARow;
    bool const hasFailed = lane.Expire(now) == Lane::Expiry::Failed;
    if (hasFailed && (worker == nullptr || missesInARow >= silentAfter)) {
        GoAway(FleetState::Silent, lane.Code(), now);
        return;
    }
    if (record->state.load(std::memory_order_relaxed) == FleetState::Online) {
        SetState(FleetState::Late, 0, now);
    }
    nextSend = std::max(nextSend, now + spacing);
    if (hasFailed) {
        PublishFailure(*worker, FleetQuality::Stale, lane.Code(), now);
        EndWork(*worker, now);
    }
}

/// Nobody is there, or nobody who can be read. All sockets are closed, so that the next attempt leaves from new ports.
void ControllerAgent::GoAway(FleetState state, std::int32_t code, std::int64_t now) {
    Halt(now);
    MarkAllStale(code); // first: who hears of it finds no value that looks good
    SetState(state, code, now);
    pauseEnd = now + backoff.Next();
}

void ControllerAgent::Halt(std::int64_t now) {
    phase = Phase::Pausing;
    pauseEnd = now;
    missesInARow = 0;
    startUp.reset();
    file.reset();
    for (auto const& worker : workers) {
        worker->lane.Close();
        worker->hasWork = false;
    }
}

/// A single late answer makes no event. It happens often, and the statistics show it.
void ControllerAgent::SetState(FleetState state, std::int32_t code, std::int64_t now) {
    FleetState const before = record->state.load(std::memory_order_relaxed);
    if (before == state) {
        return;
    }
    std::int64_t const time = services.WallTime(now);
    record->state.store(state, std::memory_order_relaxed);
    record->stateSince.store(time, std::memory_order_relaxed);
    bool const isOnlyLate = state == FleetState::Late || (before == FleetState::Late && state == FleetState::Online);
    if (!isOnlyLate) {
        edges.Tell(FleetEventKind::StateChanged, time, {}, static_cast<int>(before), static_cast<int>(state), code);
    }
}

std::int64_t ControllerAgent::NextTime() const {
    if (phase == Phase::Pausing) {
        return pauseEnd;
    }
    if (phase == Phase::StartingUp) {
        Lane const& lane = file ? *file : workers.front()->lane;
        return lane.IsWaiting() ? ExpiryOf(lane) : nextSend;
    }
    std::int64_t next = DueHeap::never;
    bool hasFree = false;
    for (auto const& worker : workers) {
        if (worker->lane.IsWaiting()) {
            next = std::min(next, ExpiryOf(worker->lane));
        } else if (worker->hasWork) {
            next = std::min(next, nextSend);
        } else {
            hasFree = hasFree || worker->lane.IsOpen();
        }
    }
    return hasFree ? std::min(next, std::max(nextSend, NextRound())) : next;
}

void ControllerAgent::Excuse(std::int64_t nanoseconds) {
    if (file) {
        file->Shift(nanoseconds);
    }
    for (auto const& worker : workers) {
        worker->lane.Shift(nanoseconds);
    }
    for (Round& round : rounds) {
        round.schedule.Excuse(nanoseconds);
    }
}

} // namespace harvlink::fleet
