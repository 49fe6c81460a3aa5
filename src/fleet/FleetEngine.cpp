#include "fleet/FleetEngine.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

namespace harvlink::fleet {
namespace {

using std::chrono::duration_cast;

constexpr std::int64_t longestWait = 3'600'000'000'000;
constexpr std::int64_t pauseFrom = 50'000'000; ///< an engine that did not run for so long was held up
constexpr std::int64_t betweenStarts = 50'000; ///< so that a thousand controllers are not asked in one breath
constexpr std::int64_t longestTick = 1'000'000; ///< the shortest period of a group
constexpr std::int64_t shortestTick = longestTick / 8; ///< a wait that is shorter ends late, and saves nothing
constexpr Poller::Token wakeToken = std::numeric_limits<Poller::Token>::max();

template <typename Clock>
std::int64_t Now() {
    return duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch()).count();
}

std::int64_t SteadyNow() {
    return Now<std::chrono::steady_clock>();
}

/// Ticks are points of a grid, so that a period of whole ticks does not jitter.
std::int64_t NextTick(std::int64_t time, std::int64_t tick) {
    return (time + tick - 1) / tick * tick;
}

} // namespace

std::int64_t FleetEngine::WallNow() {
    return Now<std::chrono::system_clock>();
}

FleetEngine::FleetEngine(SampleQueue& samples, EventQueue& events, WallClock wallClock)
    : wall(wallClock),
      services{.poller = poller, .samples = samples, .events = events, .systemCalls = systemCalls, .reply = {}} {}

bool FleetEngine::Start() {
    if (!poller.IsOpen() || !wake.IsOpen() || !services.samples.IsOpen() || !services.events.IsOpen()) {
        return false;
    }
    isStopping = false;
    thread = std::thread([this] { Run(); });
    return true;
}

void FleetEngine::Stop() {
    if (!thread.joinable()) {
        return;
    }
    isStopping = true;
    wake.Set();
    thread.join();
    slots.clear();
    due = {};
    changes.clear();
}

void FleetEngine::Replace(std::shared_ptr<ControllerRecord> old, std::shared_ptr<ControllerRecord> fresh) {
    {
        std::scoped_lock const lock(changeMutex);
        changes.push_back({std::move(old), std::move(fresh)});
    }
    wake.Set();
}

/// What has arrived is read before anybody is declared late: the time may have passed while this thread did not run.
void FleetEngine::Run() {
    (void)poller.Watch(wake.Descriptor(), wakeToken);
    CompareClocks();
    std::int64_t lastAwake = SteadyNow();
    while (!isStopping) {
        std::int64_t const before = SteadyNow();
        NotePause(before - lastAwake);
        Gather(before);
        ReadAll(before, std::clamp<std::int64_t>(due.NextTime() - before, 0, longestWait));
        lastAwake = SteadyNow();
        MakeChanges(lastAwake);
        ServeDue(lastAwake);
        services.samples.Announce();
    }
    poller.Forget(wake.Descriptor());
    for (Slot const& slot : slots) {
        if (slot.agent) {
            slot.agent->Halt(SteadyNow());
        }
    }
}

/// Waking up costs more than all else that an exchange takes. Where several answers are expected, they are read together.
void FleetEngine::Gather(std::int64_t now) {
    if (tick == 0 || services.inFlight < 2) {
        return;
    }
    std::int64_t const end = std::min(NextTick(now + 1, tick), due.NextTime());
    if (end > now) {
        std::this_thread::sleep_for(std::chrono::nanoseconds(end - now));
        systemCalls.Add();
    }
}

/// As often as there can be more than one wait returns, and then the times are looked at.
void FleetEngine::ReadAll(std::int64_t start, std::int64_t wait) {
    std::size_t const mostTimes = slots.size() / 64 + 2;
    auto tokens = poller.Wait(start + wait - SteadyNow());
    systemCalls.Add();
    NotePause(SteadyNow() - start - wait);
    CompareClocks();
    Read(tokens);
    for (std::size_t i = 0; i < mostTimes && poller.IsFull(); ++i) {
        tokens = poller.Wait(0);
        systemCalls.Add();
        Read(tokens);
    }
}

void FleetEngine::Read(std::span<Poller::Token const> tokens) {
    for (Poller::Token const token : tokens) {
        if (token == wakeToken) {
            wake.Clear();
            continue;
        }
        auto const number = token / ControllerAgent::tokensPerAgent;
        slots[number].agent->OnReadable(token, SteadyNow());
        SetDue(number);
    }
}

void FleetEngine::MakeChanges(std::int64_t now) {
    std::vector<Replacement> taken;
    {
        std::scoped_lock const lock(changeMutex);
        taken.swap(changes);
    }
    for (Replacement const& change : taken) {
        if (change.old) {
            Remove(change.old);
        }
        if (change.fresh) {
            Insert(change.fresh, now);
            now += betweenStarts;
        }
    }
    if (!taken.empty()) {
        ChooseTick();
    }
}

/// As long as the least patient controller allows. Halves of the longest, so that whole milliseconds stay on the grid.
void FleetEngine::ChooseTick() {
    std::int64_t patience = longestTick;
    for (Slot const& slot : slots) {
        patience = slot.record ? std::min(patience, slot.record->Patience()) : patience;
    }
    tick = longestTick;
    while (tick > patience) {
        tick /= 2;
    }
    tick = tick < shortestTick || !CanSleepFinely ? 0 : tick;
}

void FleetEngine::Insert(std::shared_ptr<ControllerRecord> const& record, std::int64_t start) {
    auto slot = std::ranges::find(slots, nullptr, &Slot::record);
    if (slot == slots.end()) {
        slot = slots.insert(slot, Slot{});
    }
    auto const number = static_cast<std::uint32_t>(slot - slots.begin());
    slot->record = record;
    slot->agent = std::make_unique<ControllerAgent>(record, services, number * ControllerAgent::tokensPerAgent);
    slot->agent->BeginAt(start);
    due.Set(number, start);
}

void FleetEngine::Remove(std::shared_ptr<ControllerRecord> const& record) {
    auto const slot = std::ranges::find(slots, record, &Slot::record);
    if (slot != slots.end()) {
        due.Remove(static_cast<std::uint32_t>(slot - slots.begin()));
        *slot = {};
    }
}

void FleetEngine::ServeDue(std::int64_t now) {
    while (due.NextTime() <= now) {
        DueHeap::Slot const number = due.NextSlot();
        slots[number].agent->OnTime(now);
        SetDue(number);
    }
}

void FleetEngine::SetDue(DueHeap::Slot number) {
    ControllerAgent const& agent = *slots[number].agent;
    std::int64_t const time = agent.NextTime();
    bool const isExact = tick == 0 || agent.KeepsDistance() || time > DueHeap::never - tick;
    due.Set(number, isExact ? time : NextTick(time, tick));
}

void FleetEngine::NotePause(std::int64_t nanoseconds) {
    if (nanoseconds < pauseFrom) {
        return;
    }
    pauses.Add();
    for (Slot const& slot : slots) {
        if (slot.agent) {
            slot.agent->Excuse(nanoseconds);
        }
    }
}

/// The clock of the computer may be set at any time; nothing but the times of samples follows it. Only as far as the
/// difference can be known: between two looks at the clocks, this thread may not have run.
void FleetEngine::CompareClocks() {
    std::int64_t const before = SteadyNow();
    std::int64_t const offset = wall() - before;
    std::int64_t const doubt = SteadyNow() - before;
    if (offset < services.wallOffset || offset - doubt > services.wallOffset) {
        services.wallOffset = offset - doubt / 2;
    }
}

} // namespace harvlink::fleet
