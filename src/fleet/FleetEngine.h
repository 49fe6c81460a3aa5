#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "fleet/ControllerAgent.h"
#include "fleet/DueHeap.h"
#include "fleet/Services.h"
#include "system/WakeUp.h"

namespace harvlink::fleet {

/// The loop that serves all controllers, on a thread of its own. Other threads only leave word what is to be watched.
class FleetEngine {
public:
    /// Nanoseconds since the epoch, by the clock of this computer.
    using WallClock = std::int64_t (*)();
    static std::int64_t WallNow();

    FleetEngine(SampleQueue& samples, EventQueue& events, WallClock wallClock = WallNow);
    ~FleetEngine() { Stop(); }
    FleetEngine(FleetEngine const&) = delete;
    FleetEngine& operator=(FleetEngine const&) = delete;

    /// @return false if this computer gave no descriptor for it. Throws std::system_error if it gives no thread.
    bool Start();
    void Stop();
    bool IsRunning() const { return thread.joinable(); }

    /// From any thread while it runs. At most one of them may be null.
    void Replace(std::shared_ptr<ControllerRecord> old, std::shared_ptr<ControllerRecord> fresh);

    std::uint64_t SystemCalls() const { return systemCalls.Get(); }
    std::uint64_t Pauses() const { return pauses.Get(); }

private:
    struct Replacement {
        std::shared_ptr<ControllerRecord> old;
        std::shared_ptr<ControllerRecord> fresh;
    };
    struct Slot {
        std::shared_ptr<ControllerRecord> record;
        std::unique_ptr<ControllerAgent> agent;
    };

    void Run();
    void Gather(std::int64_t now);
    void ReadAll(std::int64_t start, std::int64_t wait);
    void Read(std::span<Poller::Token const> tokens);
    void MakeChanges(std::int64_t now);
    void Insert(std::shared_ptr<ControllerRecord> const& record, std::int64_t start);
    void Remove(std::shared_ptr<ControllerRecord> const& record);
    void ChooseTick();
    void ServeDue(std::int64_t now);
    void SetDue(DueHeap::Slot number);
    void NotePause(std::int64_t nanoseconds);
    void CompareClocks();

    Poller poller;
    WakeUp wake;
    Counter systemCalls;
    Counter pauses;
    WallClock const wall;
    Services services;
    DueHeap due;
    std::vector<Slot> slots;
    std::int64_t tick = 0; ///< what is due between two of them is served at the second. 0: at once
    std::mutex changeMutex;
    std::vector<Replacement> changes;
    std::atomic<bool> isStopping = false;
    std::thread thread;
};

} // namespace harvlink::fleet
