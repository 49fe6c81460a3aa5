#include "gateway/prometheus/ProcessFigures.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <sys/resource.h>
#include <unistd.h>

namespace harvlink::gateway {

namespace {

double Seconds(timeval const& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

double ResidentBytes() {
    std::ifstream file("/proc/self/statm");
    long long total = 0;
    long long resident = 0;
    file >> total >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

double OpenDescriptors() {
    std::error_code error;
    std::filesystem::directory_iterator const files("/proc/self/fd", error);
    // One of them is that of the folder itself.
    return error ? 0.0 : static_cast<double>(std::distance(begin(files), end(files)) - 1);
}

} // namespace

ProcessFigures ReadProcessFigures() {
    static double const start =
        std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return {Seconds(usage.ru_utime) + Seconds(usage.ru_stime), ResidentBytes(), OpenDescriptors(), start};
}

} // namespace harvlink::gateway
