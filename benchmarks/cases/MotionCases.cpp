#include <atomic>
#include <condition_variable>
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

void WaitForTargets(Responder& responder, std::uint64_t count) {
    while (responder.Counters().targets.load(std::memory_order_acquire) < count) {
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
}

double DrainQueue(std::string const& address, Responder& responder, int steps, double* allocationsToSend) {
    Connection const connection = Open(address);
    for (int i = 0; i < steps; ++i) {
        Require(connection->MotionManager->AddPointToTrajectory(Point(i)));
    }
    std::uint64_t const before = responder.Counters().targets;
    std::size_t const allocations = CurrentHeapUse().allocations;
    std::int64_t const start = NowNanoseconds();
    Require(connection->MotionManager->MotionStart());
    WaitForTargets(responder, before + static_cast<std::uint64_t>(steps));
    if (allocationsToSend != nullptr) {
        *allocationsToSend = static_cast<double>(CurrentHeapUse().allocations - allocations) / steps;
    }
    return static_cast<double>(responder.Counters().lastTargetAt - start) * 1e-9;
}

void Draining(Report& report) {
    constexpr int steps = 10000;
    PinTo(0);
    std::string const address = BenchAddress(3);
    Responder responder({address}, 0);
    BareClient bare(address);
    TargetRequest request = MakeTargetRequest();
    IncomingPacket<std::uint8_t> reply;
    double allocations = 0.0;
    Paired const seconds = Pair(
        [&] {
            return Time([&] {
                for (int i = 0; i < steps; ++i) {
                    bare.Exchange(BytesOf(request), reply.Bytes(), Division::RobotControl);
                }
            });
        },
        [&] { return DrainQueue(address, responder, steps, &allocations); });
    report.Add({.name = "draining 10,000 steps, rate",
                .unit = "1/s",
                .floor = steps / seconds.floor,
                .harvlink = steps / seconds.harvlink,
                .gated = 1.0 / seconds.ratio,
                .comparison = ">=",
                .target = 0.92,
                .note = "ratio"});
    report.Add({.name = "draining, allocations to send a step",
                .unit = "",
                .harvlink = allocations,
                .gated = allocations,
                .comparison = "<=",
                .target = 0.001,
                .note = "the start of the thread included"});
    Curve growth{.name = "queued steps", .points = {}};
    for (int count = 100; count <= 100000; count *= 10) {
        growth.points.emplace_back(count, DrainQueue(address, responder, count, nullptr));
    }
    report.Add(growth);
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
    HeapUse const after = CurrentHeapUse();
    // The times themselves are on the heap while they are taken; they are gone when the second reading is made.
    report.Add({.name = "AddPointToTrajectory, median",
                .unit = "us",
                .harvlink = series.p50 * 1e6,
                .gated = series.p50 * 1e6,
                .comparison = "<=",
                .target = 0.5,
                .note = ""});
    double const allocations = static_cast<double>(after.allocations - before.allocations) / steps;
    report.Add({.name = "AddPointToTrajectory, allocations",
                .unit = "",
                .harvlink = allocations,
                .gated = allocations,
                .comparison = "<=",
                .target = 1.0,
                .note = ""});
    double const bytes = static_cast<double>(after.bytes - before.bytes) / steps;
    report.Add({.name = "memory per queued step",
                .unit = "bytes",
                .harvlink = bytes,
                .gated = bytes,
                .comparison = "<=",
                .target = 500.0,
                .note = ""});
}

constexpr int latencySamples = 2000;

/// From `add` to the arrival of the datagram, at the median. The adding thread sleeps between samples.
double LatencyOf(Responder& responder, auto add) {
    std::vector<double> times;
    for (int i = 0; i < latencySamples; ++i) {
        std::uint64_t const before = responder.Counters().targets;
        std::int64_t const start = NowNanoseconds();
        add(i);
        WaitForTargets(responder, before + 1);
        times.push_back(static_cast<double>(responder.Counters().lastTargetAt - start) * 1e-9);
    }
    return Median(times);
}

double SpinningLatency(std::string const& address, Responder& responder) {
    BareClient bare(address);
    std::atomic<int> queued = 0;
    std::jthread const sender([&](std::stop_token const& stop) {
        PinTo(0);
        TargetRequest request = MakeTargetRequest();
        IncomingPacket<std::uint8_t> reply;
        for (int sent = 0; !stop.stop_requested();) {
            if (queued.load(std::memory_order_acquire) > sent) {
                bare.Exchange(BytesOf(request), reply.Bytes(), Division::RobotControl);
                ++sent;
            }
        }
    });
    return LatencyOf(responder, [&](int) { queued.fetch_add(1, std::memory_order_release); });
}

double ConditionLatency(std::string const& address, Responder& responder) {
    BareClient bare(address);
    std::mutex mutex;
    std::condition_variable_any condition;
    int queued = 0;
    std::jthread const sender([&](std::stop_token const& stop) {
        PinTo(0);
        TargetRequest request = MakeTargetRequest();
        IncomingPacket<std::uint8_t> reply;
        for (;;) {
            {
                std::unique_lock lock(mutex);
                if (!condition.wait(lock, stop, [&] { return queued > 0; })) {
                    return;
                }
                --queued;
            }
            bare.Exchange(BytesOf(request), reply.Bytes(), Division::RobotControl);
        }
    });
    return LatencyOf(responder, [&](int) {
        std::lock_guard const lock(mutex);
        ++queued;
        condition.notify_one();
    });
}

double MonitorLatency(std::string const& address, Responder& responder) {
    PinTo(0);
    Connection const connection = Open(address);
    Require(connection->MotionManager->MotionStart()); // its thread stays on the core of its maker
    PinTo(1);
    return LatencyOf(responder, [&](int i) { Require(connection->MotionManager->AddPointToTrajectory(Point(i))); });
}

/// The feeding thread has a core of its own; the adding and the answering side share the other.
void QueueToWire(Report& report) {
    if (std::thread::hardware_concurrency() < 2) {
        return;
    }
    std::string const address = BenchAddress(5);
    Responder responder({address}, 1);
    PinTo(1);
    Paired const spinning = Pair([&] { return SpinningLatency(address, responder); },
                                 [&] { return MonitorLatency(address, responder); }, 5);
    Paired const condition = Pair([&] { return ConditionLatency(address, responder); },
                                  [&] { return MonitorLatency(address, responder); }, 5);
    report.Add({.name = "step queued to datagram, against a spinning queue",
                .unit = "us",
                .floor = spinning.floor * 1e6,
                .harvlink = spinning.harvlink * 1e6,
                .gated = spinning.ratio,
                .comparison = "<=",
                .target = 1.3,
                .note = "ratio, two cores"});
    report.Add({.name = "step queued to datagram, against a condition variable",
                .unit = "us",
                .floor = condition.floor * 1e6,
                .harvlink = condition.harvlink * 1e6,
                .gated = condition.ratio,
                .comparison = "<=",
                .target = 0.08,
                .note = "ratio, two cores"});
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
    report.Add({.name = "exchange p99 beside 8 idle, started managers",
                .unit = "us",
                .floor = beside.floor * 1e6,
                .harvlink = beside.harvlink * 1e6,
                .gated = beside.ratio,
                .comparison = "<=",
                .target = 1.5,
                .note = "ratio to the same without them"});
}

} // namespace

void MotionCases(Report& report) {
    Draining(report);
    Adding(report);
    QueueToWire(report);
    BesideIdleManagers(report);
}

} // namespace harvlink::bench
