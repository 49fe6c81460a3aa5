#pragma once

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "harvlink/harvlink.h"
#include "support/Machine.h"
#include "support/Report.h"

namespace harvlink::bench {

void ExchangeCases(Report& report);
void FileCases(Report& report);
void MotionCases(Report& report);
void ConnectionCases(Report& report);
void ThreadCases(Report& report);
void PeerCase(Report& report);
void SimulatorCase(Report& report);
void FleetCases(Report& report);

/// A number of byte reads on a fresh connection, for a counter of system calls around this process.
void RunExchanges(int count, bool isStrict);

/// Many short ones rather than few long ones: a machine that is disturbed spoils some of them.
inline constexpr int Rounds = 21;

/// Figures of a run of the same operation, in seconds.
struct Series {
    double p50 = 0.0;
    double p99 = 0.0;
    double rate = 0.0; ///< per second
    double cpu = 0.0; ///< processor time of this process per operation
};

template <typename Operation>
Series Run(int count, Operation operation) {
    std::vector<double> times;
    times.reserve(static_cast<std::size_t>(count));
    double const cpuBefore = ProcessCpuSeconds();
    std::int64_t const start = NowNanoseconds();
    std::int64_t before = start;
    for (int i = 0; i < count; ++i) {
        operation();
        std::int64_t const now = NowNanoseconds();
        times.push_back(static_cast<double>(now - before) * 1e-9);
        before = now;
    }
    double const total = static_cast<double>(before - start) * 1e-9;
    double const cpu = (ProcessCpuSeconds() - cpuBefore) / count;
    return {Percentile(times, 50.0), Percentile(times, 99.0), count / total, cpu};
}

/// Seconds that an operation takes, once.
template <typename Operation>
double Time(Operation operation) {
    std::int64_t const start = NowNanoseconds();
    operation();
    return static_cast<double>(NowNanoseconds() - start) * 1e-9;
}

/// The same, the median of several times.
template <typename Operation>
double MedianTime(int repetitions, Operation operation) {
    std::vector<double> times;
    times.reserve(static_cast<std::size_t>(repetitions));
    for (int i = 0; i < repetitions; ++i) {
        times.push_back(Time(operation));
    }
    return Median(times);
}

/// Runs both sides in turn, so that what the machine does meanwhile hits both, and gives the median of each and of the
/// ratios of the rounds.
struct Paired {
    double floor = 0.0;
    double harvlink = 0.0;
    double ratio = 0.0;
};

template <typename Floor, typename Harvlink>
Paired Pair(Floor floor, Harvlink harvlink, int rounds = Rounds) {
    std::vector<double> floors;
    std::vector<double> ours;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        floors.push_back(floor());
        ours.push_back(harvlink());
        ratios.push_back(ours.back() / floors.back());
    }
    return {Median(floors), Median(ours), Median(ratios)};
}

using Points = std::vector<std::pair<double, double>>; ///< size, seconds

/// How many times as much an item costs, at worst, when there are ten times as many items. 1 is linear growth.
inline double WorstGrowth(Points const& points) {
    double worst = 0.0;
    for (std::size_t i = 1; i < points.size(); ++i) {
        worst = std::max(worst, points[i].second / points[i - 1].second / (points[i].first / points[i - 1].first));
    }
    return worst;
}

/// Adds a curve and its growth; against that of the bare sockets if the machine itself has a part in it.
inline void AddGrowth(Report& report, std::string const& name, Points const& points, Points const& bare = {}) {
    double const worst = WorstGrowth(points);
    double const floor = bare.empty() ? 1.0 : WorstGrowth(bare);
    report.Add(Curve{name, points});
    report.Add({.name = "cost of an item, ten times the " + name,
                .unit = "",
                .floor = floor,
                .harvlink = worst,
                .gated = worst / floor,
                .comparison = "<=",
                .target = 1.1,
                .note = bare.empty() ? "1 is linear" : "ratio"});
}

/// A connection to the answering process. Throws if it can't be opened.
inline Connection Open(std::string const& address, unsigned timeoutMilliseconds = 1000, unsigned retries = 0) {
    StatusInfo status;
    Connection connection = Connect(address, status, timeoutMilliseconds, retries, false);
    if (!connection) {
        throw std::runtime_error(address + ": " + status.Message);
    }
    return connection;
}

inline void Require(StatusInfo const& status) {
    if (status.StatusCode != 0) {
        throw std::runtime_error(status.Message);
    }
}

/// A connection under all rules. Throws if it can't be opened.
inline Connection OpenStrictly(std::string const& address, Access access = Access::Observe) {
    ConnectOptions options;
    options.address = address;
    options.access = access;
    StatusInfo status;
    Connection connection = Connect(options, status);
    Require(status);
    return connection;
}

/// Throws if the answer is that of another variable.
inline void ReadByteVariable(QuorvanController& controller, std::uint8_t index = 0) {
    ByteVariableData variable;
    Require(controller.Variables->byteVariable->Read(index, variable));
    if (variable.value != index) {
        throw std::runtime_error("the reply to another request");
    }
}

/// Adds a row that is gated by the ratio of a paired measurement.
inline void AddRatio(Report& report, Row row, Paired const& figures) {
    row.floor = figures.floor;
    row.harvlink = figures.harvlink;
    row.gated = figures.ratio;
    report.Add(std::move(row));
}

/// Seconds that `count` take, shown as microseconds of one.
inline void AddTime(Report& report, std::string name, Paired const& seconds, double atMost, std::string note = "ratio",
                    double count = 1.0) {
    AddRatio(report,
             {.name = std::move(name), .unit = "us", .comparison = "<=", .target = atMost, .note = std::move(note)},
             {seconds.floor / count * 1e6, seconds.harvlink / count * 1e6, seconds.ratio});
}

/// Seconds that `count` units take, shown as units in a second.
inline void AddRate(Report& report, std::string name, std::string unit, double count, Paired const& seconds,
                    double atLeast, std::string note = "ratio") {
    AddRatio(report,
             {.name = std::move(name),
              .unit = std::move(unit),
              .comparison = ">=",
              .target = atLeast,
              .note = std::move(note)},
             {count / seconds.floor, count / seconds.harvlink, 1.0 / seconds.ratio});
}

} // namespace harvlink::bench
