#include "motion/TrajectoryProgress.h"

#include <algorithm>

namespace harvlink {

TrajectoryState TrajectoryProgress::State() const {
    std::lock_guard const lock(mutex);
    TrajectoryState copy = state;
    copy.queued = std::max<StepNumber>(queued, firstWaiting - 1); // one may be sent before it is noted as queued
    copy.monitor = isHeld ? TrajectoryMonitorState::Stopped : monitor.load();
    if (copy.monitor != TrajectoryMonitorState::HeldBack) {
        copy.heldBackSince = {};
    }
    return copy;
}

StepRecord TrajectoryProgress::Look(StepNumber number) const {
    std::lock_guard const lock(mutex);
    return LookLocked(number);
}

StepRecord TrajectoryProgress::LookLocked(StepNumber number) const {
    if (number >= firstWaiting) {
        return {.number = number, .outcome = number <= queued ? StepOutcome::Queued : StepOutcome::Unknown};
    }
    if (number == 0 || records.empty()) { // steps count from 1, and the ring comes with the first
        return {.number = number};
    }
    StepRecord const& record = records[number % remembered];
    return record.number == number ? record : StepRecord{.number = number};
}

void TrajectoryProgress::MakeRoom() {
    std::lock_guard const lock(mutex);
    if (records.empty()) {
        records.resize(remembered);
    }
}

void TrajectoryProgress::Queued(StepNumber number) {
    StepNumber last = queued;
    while (last < number && !queued.compare_exchange_weak(last, number)) {
    }
    if (isAsleep) {
        { std::lock_guard const lock(mutex); } // it is asleep by now, or has looked at the queue again
        forMonitor.notify_one();
    }
}

std::uint64_t& TrajectoryProgress::CounterOf(StepOutcome outcome) {
    switch (outcome) {
    case StepOutcome::Sent:
        return state.sent;
    case StepOutcome::Refused:
        return state.refused;
    default:
        return state.withdrawn;
    }
}

/// A step that was withdrawn while it was being sent can leave a second time: then the second is true.
StepRecord* TrajectoryProgress::Leave(StepNumber number, StepOutcome outcome) {
    if (number == 0) {
        return nullptr;
    }
    if (number < firstWaiting) {
        --state.withdrawn;
    } else {
        firstWaiting = number + 1;
    }
    ++CounterOf(outcome);
    StepRecord& record = records[number % remembered];
    if (record.number > number) {
        return nullptr;
    }
    // Targets of groups that the step does not have stay as they were: to clear them all would cost each step more than
    // it takes to note it.
    record.number = number;
    record.outcome = outcome;
    record.groups.reset();
    record.code = 0;
    record.clears = clears;
    return &record;
}

void TrajectoryProgress::Withdraw(StepNumber last) {
    {
        std::lock_guard const lock(mutex);
        if (last >= firstWaiting + remembered) { // of so many, only the last are remembered
            StepNumber const forgotten = last - remembered + 1 - firstWaiting;
            state.withdrawn += forgotten;
            firstWaiting += forgotten;
        }
        while (firstWaiting <= last) {
            Leave(firstWaiting, StepOutcome::Withdrawn);
        }
    }
    forMonitor.notify_one();
    forOthers.notify_all();
}

void TrajectoryProgress::Started() {
    using enum TrajectoryMonitorState;
    for (TrajectoryMonitorState before : {NotStarted, Failed}) {
        monitor.compare_exchange_strong(before, Idle); // the thread may be sending already
    }
}

void TrajectoryProgress::Full() {
    std::lock_guard const lock(mutex);
    if (monitor != TrajectoryMonitorState::HeldBack) {
        monitor = TrajectoryMonitorState::HeldBack;
        state.heldBackSince = std::chrono::system_clock::now();
    }
}

void TrajectoryProgress::Sent(StepNumber number, MotionStep const& step) {
    {
        std::lock_guard const lock(mutex);
        StepRecord* const record = Leave(number, StepOutcome::Sent);
        for (std::size_t slot = 0; slot < MotionSlots; ++slot) {
            if (!step.groups[slot]) {
                continue;
            }
            std::uint32_t const count = isCountKnown ? ++counts[slot] : 0;
            if (record != nullptr) {
                TargetProfile const& profile = step.profiles[slot];
                record->groups.set(slot);
                record->targets[slot] = {step.targets[slot].axes, profile.coordinateType, profile.toolNumber,
                                         profile.userCoordinateNumber, count};
            }
        }
        auto before = TrajectoryMonitorState::HeldBack;
        monitor.compare_exchange_strong(before, TrajectoryMonitorState::Sending);
    }
    forOthers.notify_all();
}

void TrajectoryProgress::BeginFailure(TrajectoryFailure failure) {
    std::lock_guard const lock(mutex);
    if (StepRecord* const record = Leave(failure.stepNumber, StepOutcome::Refused); record != nullptr) {
        record->code = failure.status.StatusCode;
    }
    state.lastFailure = std::move(failure);
    isFailing = true;
    monitor = TrajectoryMonitorState::Failed;
}

void TrajectoryProgress::NameFailure(std::string message) {
    std::lock_guard const lock(mutex);
    state.lastFailure.status.Message = std::move(message);
}

void TrajectoryProgress::EndFailure() {
    {
        std::lock_guard const lock(mutex);
        isFailing = false;
    }
    forOthers.notify_all();
}

void TrajectoryProgress::Rested() {
    {
        std::lock_guard const lock(mutex);
        if (monitor != TrajectoryMonitorState::Failed) {
            monitor = TrajectoryMonitorState::Idle;
        }
    }
    forOthers.notify_all();
}

void TrajectoryProgress::TargetsCleared() {
    std::lock_guard const lock(mutex);
    ++clears;
    counts = {};
    reached = {};
    isCountKnown = true;
}

void TrajectoryProgress::CountLost() {
    std::lock_guard const lock(mutex);
    isCountKnown = false;
}

void TrajectoryProgress::See(std::uint32_t clearsWhenAsked, std::size_t slot, double progress) {
    std::lock_guard const lock(mutex);
    if (clearsWhenAsked != clears) {
        return;
    }
    isCountKnown = isCountKnown && progress >= reached[slot];
    reached[slot] = progress;
}

bool TrajectoryProgress::IsCountKnown() const {
    std::lock_guard const lock(mutex);
    return isCountKnown;
}

std::uint32_t TrajectoryProgress::Clears() const {
    std::lock_guard const lock(mutex);
    return clears;
}

bool TrajectoryProgress::IsFollowed(std::size_t slot, std::uint32_t count) const {
    std::lock_guard const lock(mutex);
    return counts[slot] > count;
}

bool TrajectoryProgress::Hold() {
    std::lock_guard const lock(mutex);
    bool const wasHeld = isHeld;
    isHeld = true;
    forMonitor.notify_one();
    return wasHeld;
}

void TrajectoryProgress::Release() {
    {
        std::lock_guard const lock(mutex);
        isHeld = false;
    }
    forMonitor.notify_one();
}

bool TrajectoryProgress::IsHeld() const {
    std::lock_guard const lock(mutex);
    return isHeld;
}

void TrajectoryProgress::Close() {
    std::unique_lock lock(mutex);
    isClosing = true;
    forMonitor.notify_one();
    forOthers.notify_all();
    forOthers.wait(lock, [this] { return visits == 0; });
}

bool TrajectoryProgress::MaySend(StepNumber number) const {
    std::lock_guard const lock(mutex);
    return MaySendLocked(number);
}

bool TrajectoryProgress::MaySendLocked(StepNumber number) const {
    return !isClosing && !isHeld && (number == 0 || number >= firstWaiting);
}

void TrajectoryProgress::SleepWhileFull(StepNumber number, std::chrono::milliseconds time) {
    std::unique_lock lock(mutex);
    forMonitor.wait_for(lock, time, [&] { return !MaySendLocked(number); });
}

TrajectoryProgress::Visit::Visit(TrajectoryProgress& target) : progress(target) {
    std::lock_guard const lock(progress.mutex);
    ++progress.visits;
}

/// Notified under the lock, on purpose: as soon as it is free, Close may return and the progress be gone.
TrajectoryProgress::Visit::~Visit() {
    std::lock_guard const lock(progress.mutex);
    --progress.visits;
    progress.forOthers.notify_all();
}

void TrajectoryProgress::Pause(Clock::time_point end) {
    std::unique_lock lock(mutex);
    forOthers.wait_until(lock, end, [this] { return isClosing.load(); });
}

bool TrajectoryProgress::AwaitOutcome(StepNumber number, Clock::time_point end) {
    std::unique_lock lock(mutex);
    auto const isOver = [&] { return isClosing || LookLocked(number).outcome != StepOutcome::Queued; };
    forOthers.wait_until(lock, end, isOver);
    forOthers.wait(lock, [this] { return isClosing || !isFailing; });
    return isOver();
}

void TrajectoryProgress::AwaitSettled(Clock::time_point end) {
    std::unique_lock lock(mutex);
    forOthers.wait(lock, [this] { return isClosing || !isFailing; });
    forOthers.wait_until(lock, end, [this] {
        bool const isFed = monitor != TrajectoryMonitorState::NotStarted && !isHeld;
        return isClosing || (!isFailing && (!isFed || firstWaiting > queued));
    });
    forOthers.wait(lock, [this] { return isClosing || !isFailing; });
}

} // namespace harvlink
