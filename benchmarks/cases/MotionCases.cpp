#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "cases/Cases.h"
#include "motion/MotionMessages.h"
#include "support/AllocationCounter.h"
#include "support/BareClient.h"
#include "support/Responder.h"

namespace harvlink::bench {
namespace {

using TargetRequest = OutgoingPacket<MotionTargetSend>;

TargetRequest MakeTargetRequest() {
    TargetRequest request;
    request.header.payloadSize = sizeof(MotionTargetSend);
    request.subHeader = {CommandNumber::MotionSendTarget, 0, FixedField::WholeRecord, ServiceWriteAll};
    return request;
}

std::span<std::byte const> BytesOf(TargetRequest& request) {
    return request.Bytes().first(HeaderSize + sizeof(MotionTargetSend));
}

Motion Point(double x) {
    Motion motion;
    motion.controlGroup = ControlGroupId::R1;
    motion.speed = 100.0;
    motion.moveType = MoveInterpolationType::Line;
    motion.position.coordinateType = CoordinateType::BaseCoordinate;
    motion.position.axes[0] = x;
    return motion;
}

/// Looks rarely, so that it takes no time from the threads that are measured on the same core.
void WaitForTargets(Responder& responder, std::uint64_t count, std::chrono::microseconds pause) {
    while (responder.Counters().targets.load(std::memory_order_acquire) < count) {
        std::this_thread::sleep_for(pause);
    }
}

struct Drained {
    double seconds = 0.0;
    double allocations = 0.0; ///< in all, to send
    double otherDatagrams = 0.0; ///< than motion targets
};

Drained DrainQueue(std::string const& address, Responder& responder, int steps) {
    Connection const connection = Open(address);
    for (int i = 0; i < steps; ++i) {
        Require(connection->MotionManager->AddPointToTrajectory(Point(i)));
    }
    ResponderCounters& counters = responder.Counters();
    std::uint64_t const targets = counters.targets;
    std::uint64_t const datagrams = counters.datagrams;
    std::size_t const allocations = CurrentHeapUse().allocations;
    std::int64_t const start = WallNanoseconds();
    Require(connection->MotionManager->MotionStart());
    WaitForTargets(responder, targets + static_cast<std::uint64_t>(steps), std::chrono::milliseconds(2));
    return {static_cast<double>(counters.lastTargetAt - start) * 1e-9,
            static_cast<double>(CurrentHeapUse().allocations - allocations),
            static_cast<double>(counters.datagrams - datagrams) - steps};
}

/// @param[in,out] beyond the most datagrams besides the targets that a run has sent
Points DrainingGrowth(std::string const& address, Responder& responder, double& beyond) {
    Points growth;
    for (int count = 100; count <= 100000; count *= 10) {
        std::vector<double> times;
        for (int i = 0; i < 3; ++i) {
            Drained const result = DrainQueue(address, responder, count);
            times.push_back(result.seconds);
            beyond = std::max(beyond, result.otherDatagrams);
        }
        growth.emplace_back(count, Median(times));
    }
    return growth;
}

void Draining(Report& report) {
    constexpr int steps = 10000;
    constexpr int settingDatagrams = 4; // start, coordinates, speed and tool
    PinTo(0);
    std::string const address = BenchAddress(3);
    Responder responder({address}, 0);
    BareClient bare(address);
    TargetRequest request = MakeTargetRequest();
    IncomingPacket<std::uint8_t> reply;
    Drained drained;
    Paired const seconds = Pair(
        [&] {
            // On a thread of its own too: calls cost more in a process that has several.
            return Time([&] {
                std::jthread([&] {
                    for (int i = 0; i < steps; ++i) {
                        bare.Exchange(BytesOf(request), reply.Bytes(), Division::RobotControl);
                    }
                }).join();
            });
        },
        [&] {
            drained = DrainQueue(address, responder, steps);
            return drained.seconds;
        });
    AddRate(report, "draining 10,000 steps, rate", "1/s", steps, seconds, 0.92);
    report.Add({.name = "draining, allocations to send a step",
                .unit = "",
                .harvlink = drained.allocations / steps,
                .gated = drained.allocations / steps,
                .comparison = "<=",
                .target = 0.001,
                .note = "the start of the thread included"});
    double beyond = drained.otherDatagrams;
    Points const growth = DrainingGrowth(address, responder, beyond);
    report.Add({.name = "draining, datagrams beyond one a step",
                .unit = "",
                .harvlink = beyond - settingDatagrams,
                .gated = beyond - settingDatagrams,
                .comparison = "==",
                .target = 0,
                .note = "not counting those of the first step, which sends the settings"});
    AddGrowth(report, "queued steps", growth);
}

void Adding(Report& report) {
    constexpr int steps = 100000;
    PinTo(0);
    std::string const address = BenchAddress(4);
    Responder const responder({address}, 0);
    Connection const connection = Open(address);
    Motion const point = Point(1.0);
    HeapUse const before = CurrentHeapUse();
    Series const series = Run(steps, [&] { (void)connection->MotionManager->AddPointToTrajectory(point); });
    HeapUse const after = CurrentHeapUse(); // the times that Run keeps are gone again
    report.Add({.name = "AddPointToTrajectory, median",
                .unit = "us",
                .harvlink = series.p50 * 1e6,
                .gated = series.p50 * 1e6,
                .comparison = "<=",
                .target = 0.5,
                .note = ""});
    std::vector<double> allocations;
    allocations.reserve(steps);
    for (int i = 0; i < steps; ++i) {
        std::size_t const start = CurrentHeapUse().allocations;
        (void)connection->MotionManager->AddPointToTrajectory(point);
        allocations.push_back(static_cast<double>(CurrentHeapUse().allocations - start));
    }
    report.Add({.name = "AddPointToTrajectory, allocations, p99",
                .unit = "",
                .harvlink = Percentile(allocations, 99.0),
                .gated = Percentile(allocations, 99.0),
                .comparison = "<=",
                .target = 1.0,
                .note = "its status text; a block of the queue now and then"});
    double const bytes = static_cast<double>(after.bytes - before.bytes) / steps;
    report.Add({.name = "memory per queued step",
                .unit = "bytes",
                .harvlink = bytes,
                .gated = bytes,
                .comparison = "<=",
                .target = 500.0,
                .note = ""});
}

constexpr int latencySamples = 500;

/// From `add` to when the kernel had the datagram, at the median. The adding thread sleeps between samples, and does
/// `prepare` before each.
double LatencyOf(Responder& responder, auto prepare, auto add) {
    std::vector<double> times;
    for (int i = 0; i < latencySamples; ++i) {
        std::uint64_t const before = responder.Counters().targets;
        prepare();
        std::int64_t const start = WallNanoseconds();
        add(i);
        WaitForTargets(responder, before + 1, std::chrono::microseconds(200));
        times.push_back(static_cast<double>(responder.Counters().lastTargetAt - start) * 1e-9);
    }
    return Median(times);
}

/// The least that hands a step to another thread: a queue of what is to be sent, and either way of waiting for it.
class BareQueue {
public:
    void Add(MotionTargetSend const& target) {
        std::lock_guard const lock(mutex);
        targets.push_back(target);
        isEmpty.store(false, std::memory_order_release);
        added.notify_one(); // costs nothing while nobody waits
    }

    bool SpinFor(MotionTargetSend& target, std::stop_token const& stop) {
        while (isEmpty.load(std::memory_order_acquire)) {
            if (stop.stop_requested()) {
                return false;
            }
        }
        std::lock_guard const lock(mutex);
        Take(target);
        return true;
    }

    bool SleepFor(MotionTargetSend& target, std::stop_token const& stop) {
        std::unique_lock lock(mutex);
        if (!added.wait(lock, stop, [&] { return !targets.empty(); })) {
            return false;
        }
        Take(target);
        return true;
    }

private:
    void Take(MotionTargetSend& target) {
        target = targets.front();
        targets.pop_front();
        isEmpty.store(targets.empty(), std::memory_order_release);
    }

    std::mutex mutex;
    std::condition_variable_any added;
    std::deque<MotionTargetSend> targets;
    std::atomic<bool> isEmpty = true;
};

using WaitForTarget = bool (BareQueue::*)(MotionTargetSend&, std::stop_token const&);

double BareLatency(std::string const& address, Responder& responder, WaitForTarget wait) {
    BareClient bare(address);
    BareQueue queue;
    std::jthread const sender([&](std::stop_token const& stop) {
        PinTo(0);
        TargetRequest request = MakeTargetRequest();
        IncomingPacket<std::uint8_t> reply;
        while ((queue.*wait)(request.payload, stop)) {
            bare.Exchange(BytesOf(request), reply.Bytes(), Division::RobotControl);
        }
    });
    return LatencyOf(
        responder, [] {},
        [&](int i) {
            MotionTargetSend target{1, {}};
            target.targets[0].axes[0] = i;
            queue.Add(target);
        });
}

double MonitorLatency(std::string const& address, Responder& responder) {
    PinTo(0);
    Connection const connection = Open(address);
    Require(connection->MotionManager->MotionStart()); // its thread stays on the core of its maker
    PinTo(1);
    return LatencyOf(
        responder, [] {}, [&](int i) { Require(connection->MotionManager->AddPointToTrajectory(Point(i))); });
}

/// The feeding thread has a core of its own; the adding and the answering side share the other.
void QueueToWire(Report& report) {
    if (std::thread::hardware_concurrency() < 2) {
        return;
    }
    std::string const address = BenchAddress(5);
    Responder responder({address}, 1, ArrivalTime::Kernel);
    PinTo(1);
    Paired const spinning = Pair([&] { return BareLatency(address, responder, &BareQueue::SpinFor); },
                                 [&] { return MonitorLatency(address, responder); });
    Paired const condition = Pair([&] { return BareLatency(address, responder, &BareQueue::SleepFor); },
                                  [&] { return MonitorLatency(address, responder); });
    AddTime(report, "step queued to datagram, against a spinning queue", spinning, 1.3, "ratio, two cores");
    AddTime(report, "step queued to datagram, against a condition variable", condition, 0.08, "ratio, two cores");
}

/// A strict monitor sleeps while it has nothing to send: what that saves, and what waking it takes.
void SleepingMonitor(Report& report) {
    std::string const address = BenchAddress(6);
    Responder responder({address}, 1, ArrivalTime::Kernel);
    PinTo(0);
    Connection const connection = OpenStrictly(address, Access::Full);
    Require(connection->MotionManager->MotionStart());
    auto const fallAsleep = [] { std::this_thread::sleep_for(std::chrono::milliseconds(1)); };
    double const latency = LatencyOf(
        responder, fallAsleep, [&](int i) { Require(connection->MotionManager->AddPointToTrajectory(Point(i))); });
    report.Add({.name = "strict: point queued to a sleeping monitor, to datagram",
                .unit = "us",
                .harvlink = latency * 1e6,
                .gated = latency * 1e6,
                .comparison = "<=",
                .target = 100.0,
                .note = "median"});
    fallAsleep();
    double const before = ProcessCpuSeconds();
    std::this_thread::sleep_for(std::chrono::seconds(1));
    double const used = ProcessCpuSeconds() - before;
    report.Add({.name = "strict: processor time of an idle, started manager",
                .unit = "us/s",
                .harvlink = used * 1e6,
                .gated = used * 1e6,
                .comparison = "<=",
                .target = 500.0,
                .note = "of the whole process"});
}

void BesideIdleManagers(Report& report) {
    constexpr int managers = 8;
    std::vector<std::string> addresses;
    for (int i = 0; i <= managers; ++i) {
        addresses.push_back(BenchAddress(10 + i));
    }
    Responder const responder(addresses, 0);
    PinTo(0);
    Connection const connection = Open(addresses[0]);
    auto const p99 = [&] { return Run(5000, [&] { ReadByteVariable(*connection); }).p99; };
    Paired const beside = Pair(p99, [&] {
        std::vector<Connection> started;
        for (int i = 1; i <= managers; ++i) {
            started.push_back(Open(addresses[static_cast<std::size_t>(i)]));
            Require(started.back()->MotionManager->MotionStart());
        }
        return p99();
    });
    AddTime(report, "exchange p99 beside 8 idle, started managers", beside, 1.5, "ratio to the same without them");
}

} // namespace

void MotionCases(Report& report) {
    Draining(report);
    Adding(report);
    QueueToWire(report);
    SleepingMonitor(report);
    BesideIdleManagers(report);
}

} // namespace harvlink::bench
