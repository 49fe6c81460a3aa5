#include <algorithm>

#include "fleet/ControllerAgent.h"
#include "fleet/DueHeap.h"

// How an agent reads the groups of its controller, and what becomes of the answers.

namespace harvlink::fleet {

/// Lets every lane that is free ask for the next.
void ControllerAgent::Advance(std::int64_t now) {
    BeginDueRounds(now);
    for (std::size_t i = 0; i < workers.size() && now >= nextSend && phase == Phase::Running; ++i) {
        Worker& worker = *workers[i];
        if (worker.lane.IsWaiting() || !worker.lane.IsOpen()) {
            continue;
        }
        if ((!worker.hasWork && !Assign(worker, now)) || !Ask(worker, now)) {
            return;
        }
    }
}

void ControllerAgent::BeginDueRounds(std::int64_t now) {
    for (std::uint32_t i = 0; i < rounds.size(); ++i) {
        Round& round = rounds[i];
        if (!round.schedule.IsActive() && round.schedule.Due() <= now) {
            round.schedule.Begin(now);
            round.cursor = record->groups[i].begin;
            SkipRefused(i, now);
        }
    }
}

/// Gives the lane the next datagram of the round that has to end first.
bool ControllerAgent::Assign(Worker& worker, std::int64_t now) {
    std::int64_t earliest = DueHeap::never;
    std::uint32_t chosen = 0;
    for (std::uint32_t i = 0; i < rounds.size(); ++i) {
        Round const& round = rounds[i];
        bool const isOpen = round.schedule.IsActive() && round.cursor < record->groups[i].end;
        if (isOpen && round.schedule.End() < earliest) {
            earliest = round.schedule.End();
            chosen = i;
        }
    }
    if (earliest == DueHeap::never) {
        return false;
    }
    Round& round = rounds[chosen];
    worker.hasWork = true;
    worker.begin = round.cursor;
    worker.end = EndOfDatagram(worker.begin, record->groups[chosen].end);
    worker.part = 0;
    ++round.pending;
    round.cursor = worker.end;
    SkipRefused(chosen, now);
    return true;
}

std::uint32_t ControllerAgent::EndOfDatagram(std::uint32_t begin, std::uint32_t end) const {
    std::uint32_t item = begin + 1;
    while (item < end && !record->items[item].startsDatagram) {
        ++item;
    }
    return item;
}

void ControllerAgent::SkipRefused(std::uint32_t group, std::int64_t now) {
    Round& round = rounds[group];
    while (round.cursor < record->groups[group].end && IsRefused(round.cursor)) {
        ++round.cursor;
    }
    EndRoundIfDone(group, now);
}

bool ControllerAgent::Ask(Worker& worker, std::int64_t now) {
    if (!worker.lane.Ask(QueryFor(record->items[worker.begin], worker.part, facts), limits, now)) {
        GoAway(FleetState::Refused, static_cast<std::int32_t>(ErrorStatusCodes::SocketOpenError), now);
        return false;
    }
    nextSend = now + spacing;
    return true;
}

void ControllerAgent::TakeAnswer(Worker& worker, std::int64_t now) {
    if (std::int32_t const code = worker.lane.Code(); code != 0) {
        record->refusals.Add();
        PublishFailure(worker, FleetQuality::Refused, code, now);
        EndWork(worker, now);
        return;
    }
    Item const& item = record->items[worker.begin];
    if (item.Parts() == 1) {
        PublishAnswer(worker, now);
        EndWork(worker, now);
        return;
    }
    (void)MakeRecord(item, worker.part, facts, services.payload, *worker.parts);
    if (++worker.part == item.Parts()) {
        Publish(worker.begin, StampOf(worker, LargestRecord, now), *worker.parts);
        EndWork(worker, now);
    }
}

Stamp ControllerAgent::StampOf(Worker const& worker, std::size_t size, std::int64_t now) const {
    constexpr std::int64_t nanosecondsPerMicrosecond = 1000;
    return {.answerTime = services.WallTime(now),
            .roundTrip = static_cast<std::uint32_t>(worker.lane.RoundTrip() / nanosecondsPerMicrosecond),
            .code = 0,
            .size = static_cast<std::uint16_t>(size),
            .quality = FleetQuality::Good};
}

void ControllerAgent::PublishAnswer(Worker const& worker, std::int64_t now) {
    std::array<std::byte, LargestRecord> made{};
    for (std::uint32_t i = worker.begin; i < worker.end; ++i) {
        std::size_t const size = MakeRecord(record->items[i], 0, facts, services.payload, made);
        Publish(i, StampOf(worker, size, now), std::span(made).first(size));
    }
}

void ControllerAgent::EndWork(Worker& worker, std::int64_t now) {
    std::uint32_t const group = record->items[worker.begin].group;
    worker.hasWork = false;
    --rounds[group].pending;
    EndRoundIfDone(group, now);
}

void ControllerAgent::EndRoundIfDone(std::uint32_t group, std::int64_t now) {
    Round& round = rounds[group];
    Group& own = record->groups[group];
    if (!round.schedule.IsActive() || round.cursor < own.end || round.pending > 0) {
        return;
    }
    bool const isFirstOverrun = round.schedule.Finish(now) && own.overruns.Get() == 1;
    if (isFirstOverrun) {
        edges.Tell(FleetEventKind::RanOver, services.WallTime(now), {}, 0, group);
    }
}

std::int64_t ControllerAgent::NextRound() const {
    std::int64_t next = DueHeap::never;
    for (std::size_t i = 0; i < rounds.size(); ++i) {
        Round const& round = rounds[i];
        if (!round.schedule.IsActive()) {
            next = std::min(next, round.schedule.Due());
        } else if (round.cursor < record->groups[i].end) {
            return 0; // at once
        }
    }
    return next;
}

} // namespace harvlink::fleet
