#pragma once

#include <chrono>
#include <cstdint>
#include <ctime>
#include <vector>

namespace harvlink::bench {

/// Lets the calling thread, and what it starts from now on, run on one core only.
void PinTo(int core);
void Unpin();

inline std::int64_t NowNanoseconds() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

/// The clock of the kernel's times of arrival.
inline std::int64_t WallNanoseconds() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

/// Processor time of this process, or of the calling thread alone.
double ProcessCpuSeconds();
double ThreadCpuSeconds();

double Percentile(std::vector<double> values, double percent);
double Median(std::vector<double> const& values);

/// Threads of this process.
int CountThreads();

/// Times that the threads of this process gave up the processor by themselves.
long VoluntarySwitches();

} // namespace harvlink::bench
