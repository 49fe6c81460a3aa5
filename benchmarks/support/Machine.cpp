#include "support/Machine.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <thread>

#include <sched.h>
#include <sys/resource.h>

namespace harvlink::bench {
namespace {

double SecondsOf(clockid_t clock) {
    timespec time{};
    ::clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

} // namespace

void PinTo(int core) {
    cpu_set_t cores;
    CPU_ZERO(&cores);
    CPU_SET(core, &cores);
    ::sched_setaffinity(0, sizeof(cores), &cores);
}

void Unpin() {
    cpu_set_t cores;
    CPU_ZERO(&cores);
    for (unsigned core = 0; core < std::thread::hardware_concurrency(); ++core) {
        CPU_SET(core, &cores);
    }
    ::sched_setaffinity(0, sizeof(cores), &cores);
}

double ProcessCpuSeconds() {
    return SecondsOf(CLOCK_PROCESS_CPUTIME_ID);
}

double ThreadCpuSeconds() {
    return SecondsOf(CLOCK_THREAD_CPUTIME_ID);
}

double Percentile(std::vector<double> values, double percent) {
    auto const index = static_cast<std::size_t>(std::lround(percent / 100.0 * static_cast<double>(values.size() - 1)));
    std::ranges::nth_element(values, values.begin() + static_cast<std::ptrdiff_t>(index));
    return values[index];
}

double Median(std::vector<double> const& values) {
    return Percentile(values, 50.0);
}

int CountThreads() {
    return static_cast<int>(std::distance(std::filesystem::directory_iterator("/proc/self/task"), {}));
}

long VoluntarySwitches() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_nvcsw; // NOLINT(cppcoreguidelines-pro-type-union-access): the C library keeps its fields in unions
}

} // namespace harvlink::bench
