#pragma once

#include <array>
#include <atomic>
#include <bitset>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

#include "harvlink/TrajectoryState.h"
#include "motion/MotionStep.h"

namespace harvlink {

/// Steps count from 1; 0 is a step that was never queued.
using StepNumber = std::uint64_t;

enum class StepOutcome : std::uint8_t {
    Unknown, ///< never queued, or too far back
    Queued,
    Sent,
    Refused,
    Withdrawn,
};

/// Where a group goes in a step that was sent.
struct SentTarget {
    WireAxes axes{};
    CoordinateType coordinateType{};
    std::int32_t toolNumber = 0;
    std::int32_t userCoordinateNumber = 0;
    std::uint32_t count = 0; ///< the group's targets since the last clear, this one included; 0 if that is not known
};

/// What is remembered of a step that left the queue.
struct StepRecord {
    StepNumber number = 0;
    StepOutcome outcome = StepOutcome::Unknown;
    std::bitset<MotionSlots> groups{};
    std::int32_t code = 0; ///< of a refused step
    std::uint32_t clears = 0; ///< how often targets had been cleared when the step was sent
    std::array<SentTarget, MotionSlots> targets{}; ///< of `groups`
};

/// Records what became of each step, how many targets each group was given since the controller last cleared them, and what
/// the monitor is doing. It decides nothing.
///
/// Any thread may call anything. Its lock is the last one that a thread takes: nothing else is waited for under it.
class TrajectoryProgress {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::size_t remembered = 1024; ///< steps beyond the queue

    TrajectoryState State() const;

    /// Copies what is known of a step.
    StepRecord Look(StepNumber number) const;

    // Of the queue.
    void MakeRoom(); ///< Before the first step is queued. The only operation that allocates.
    /// When it is in the queue already. Takes the lock only to wake a sleeping monitor.
    void Queued(StepNumber number);
    void Withdraw(StepNumber last); ///< All that still waits, up to this one. What was sent or refused stays so.

    // Of the monitor.
    void Started();
    bool HasMonitor() const {
        return monitor != TrajectoryMonitorState::NotStarted;
    } ///< Whether steps leave the queue.
    /// A step is being sent.
    void Taken() { monitor.store(TrajectoryMonitorState::Sending, std::memory_order_relaxed); }
    void Full(); ///< There was no room for it.
    void Sent(StepNumber number, MotionStep const& step); ///< Number 0 only counts the targets.
    void BeginFailure(TrajectoryFailure failure); ///< Until EndFailure no wait returns. Takes no memory.
    void NameFailure(std::string message); ///< In place of its text.
    void EndFailure();
    void Rested(); ///< There is nothing to send.

    // Of the controller's targets.
    void TargetsCleared();
    void CountLost(); ///< Nobody knows whether they were cleared.

    /// Takes in a progress that the controller reported, asked for when targets had been cleared `clears` times. One that
    /// went back shows that another program has cleared the targets.
    void See(std::uint32_t clears, std::size_t slot, double progress);
    bool IsCountKnown() const;
    std::uint32_t Clears() const;
    bool IsFollowed(std::size_t slot, std::uint32_t count) const; ///< Whether another target of the group was sent.

    /// Holds the queue back until Release. Returns whether it was held already.
    bool Hold();
    void Release();
    bool IsHeld() const;
    void Close(); ///< Ends all waits, and returns when nobody waits any more.
    bool IsClosing() const { return isClosing; }

    /// Whether the step may still be sent: neither withdrawn nor held back nor overtaken by the end of the connection.
    bool MaySend(StepNumber number) const;

    /// Sleeps until there is work that may be done, or the end.
    template <typename Predicate>
    void SleepUntil(Predicate const& hasWork) {
        std::unique_lock lock(mutex);
        isAsleep = true;
        forMonitor.wait(lock, [&] { return isClosing || (!isHeld && hasWork()); });
        isAsleep = false;
    }
    /// Sleeps for a moment, or until the step may not be sent any more.
    void SleepWhileFull(StepNumber number, std::chrono::milliseconds time);

    /// Keeps Close from returning.
    class Visit {
    public:
        explicit Visit(TrajectoryProgress& target);
        Visit(Visit const&) = delete;
        Visit& operator=(Visit const&) = delete;
        ~Visit();

    private:
        TrajectoryProgress& progress;
    };

    void Pause(Clock::time_point end); ///< Sleeps, but not beyond Close.

    /// Waits until a step has left the queue; false if that did not happen in time. Both waits return only while no failure
    /// is being handled, however long that takes: what is queued after them is not cleared by it.
    bool AwaitOutcome(StepNumber number, Clock::time_point end);
    /// Waits until the queue was sent or dropped.
    void AwaitSettled(Clock::time_point end);

private:
    StepRecord LookLocked(StepNumber number) const;
    bool MaySendLocked(StepNumber number) const;
    std::uint64_t& CounterOf(StepOutcome outcome);
    StepRecord* Leave(StepNumber number, StepOutcome outcome);

    mutable std::mutex mutex;
    std::condition_variable forMonitor;
    std::condition_variable forOthers;
    std::vector<StepRecord> records; ///< a ring by number, made by MakeRoom
    TrajectoryState
        state; ///< all but these two, which are set without the lock, as they stand between a point and the wire
    std::atomic<StepNumber> queued = 0;
    std::atomic<TrajectoryMonitorState> monitor = TrajectoryMonitorState::NotStarted;
    std::atomic<bool> isAsleep = false;
    StepNumber firstWaiting = 1;
    std::array<std::uint32_t, MotionSlots> counts{};
    std::array<double, MotionSlots> reached{};
    std::uint32_t clears = 0;
    unsigned visits = 0;
    bool isCountKnown = false;
    bool isFailing = false;
    bool isHeld = false;
    std::atomic<bool> isClosing = false; ///< set under the lock, for those who wait
};

} // namespace harvlink
