#include <algorithm>
#include <string>
#include <utility>

#include "fleet/ControllerAgent.h"
#include "fleet/FieldText.h"

// How an agent learns what its controller is, before it reads the groups.

namespace harvlink::fleet {
void ControllerAgent::BeginStartUp(std::int64_t now) {
    phase = Phase::StartingUp;
    startUp = std::make_unique<StartUp>(record->items);
    if (!workers.front()->lane.Open(Division::RobotControl)) {
        GoAway(FleetState::Refused, static_cast<std::int32_t>(ErrorStatusCodes::SocketOpenError), now);
        return;
    }
    AskForStartUp(now);
}

/// One lost answer is not a lost link, here neither.
void ControllerAgent::AskForStartUp(std::int64_t now) {
    if (now < nextSend) {
        return;
    }
    nextSend = now + spacing;
    WaitLimits const ofStartUp{.timeout = limits.timeout, .retries = std::max(limits.retries, silentAfter - 1)};
    if (startUp->Now() == StartUp::State::AskFilePort) {
        AskForFile(now);
    } else if (!workers.front()->lane.Ask(startUp->Next(), ofStartUp, now)) {
        GoAway(FleetState::Refused, static_cast<std::int32_t>(ErrorStatusCodes::SocketOpenError), now);
    }
}

/// The last acknowledgement of a file has no answer; the start-up goes on behind it.
void ControllerAgent::AskForFile(std::int64_t now) {
    if (!file) {
        file = std::make_unique<Lane>(services, *record, firstToken + fileLane);
        if (!file->Open(Division::FileControl)) {
            GoAway(FleetState::Refused, static_cast<std::int32_t>(ErrorStatusCodes::SocketOpenError), now);
            return;
        }
    }
    auto const step = startUp->NextOfFile();
    if (step) {
        file->AskFile(step->request, step->requestId, step->waitForReply, limits, now);
        if (step->waitForReply) {
            return;
        }
        startUp->TakeOfFile(0, services.reply);
    }
    file.reset();
    startUp->EndOfFile();
    GoOnWithStartUp(now);
}

void ControllerAgent::TakeForStartUp(std::int64_t now) {
    if (file) {
        startUp->TakeOfFile(file->Code(), services.reply);
    } else {
        startUp->Take(workers.front()->lane.Code(), services.payload);
    }
    GoOnWithStartUp(now);
}

void ControllerAgent::GoOnWithStartUp(std::int64_t now) {
    switch (startUp->Now()) {
    case StartUp::State::Failed:
        GoAway(FleetState::Refused, startUp->Failure(), now);
        break;
    case StartUp::State::Done:
        EndStartUp(now);
        break;
    default:
        AskForStartUp(now);
    }
}

void ControllerAgent::EndStartUp(std::int64_t now) {
    ControllerFacts const learnt = startUp->Facts();
    startUp.reset();
    file.reset();
    phase = Phase::Running;
    backoff.Reset();
    record->startUps.Add();
    SetState(FleetState::Online, 0, now);
    CompareFacts(now, learnt);
    for (std::size_t i = 1; i < workers.size(); ++i) {
        (void)workers[i]->lane.Open(Division::RobotControl); // without it the others have more to do
    }
    for (std::size_t i = 0; i < rounds.size(); ++i) {
        auto const number = static_cast<std::uint32_t>(firstToken / tokensPerAgent + i * 7919);
        Group const& group = record->groups[i];
        rounds[i].schedule.Start(now, PhaseOf(number, group.period));
        rounds[i].pending = 0;
        rounds[i].cursor = group.end;
    }
    Advance(now);
}

void ControllerAgent::CompareFacts(std::int64_t now, ControllerFacts const& learnt) {
    std::int64_t const time = services.WallTime(now);
    ControllerFacts const before = std::exchange(facts, learnt);
    bool const isFirst = !std::exchange(hasFacts, true);
    auto const tell = [&](FleetEventKind kind, std::string_view was, std::string_view is) {
        if (!isFirst && was != is) {
            edges.Tell(kind, time, std::string(is).append(", was ").append(was));
        }
    };
    tell(FleetEventKind::ModelChanged, FieldText(before.model), FieldText(facts.model));
    tell(FleetEventKind::SoftwareChanged, FieldText(before.software), FieldText(facts.software));
    if (isFirst || before.generation != facts.generation) {
        RefuseItems(now);
    }
}

} // namespace harvlink::fleet
