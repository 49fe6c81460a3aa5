#pragma once

#include <stdexcept>
#include <string>
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

/// A number of byte reads on a fresh connection, for a counter of system calls around this process.
void RunExchanges(int count);

inline constexpr int Rounds = 7;

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

/// A connection to the answering process; throws if it can't be had.
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

inline void ReadByteVariable(QuorvanController& controller) {
    ByteVariableData variable;
    Require(controller.Variables->byteVariable->Read(0, variable));
}

} // namespace harvlink::bench
