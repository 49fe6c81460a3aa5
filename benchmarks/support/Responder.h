#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include <sys/types.h>

namespace harvlink::bench {

/// What the answering process tells about the datagrams it got.
struct ResponderCounters {
    std::atomic<std::uint64_t> datagrams;
    std::atomic<std::uint64_t> targets; ///< motion targets among them
    std::atomic<std::int64_t> lastTargetAt; ///< steady clock, nanoseconds
};

/// The answering side: a process of its own that does as little as it can, so that it does not hide the client's cost.
/// It answers every request with status 0 and a payload of the right size, and serves one file of any size.
class Responder {
public:
    /// Answers on each of the addresses, on one core (-1: any).
    Responder(std::vector<std::string> const& addresses, int core);
    Responder(Responder const&) = delete;
    Responder& operator=(Responder const&) = delete;
    ~Responder();

    ResponderCounters& Counters() { return *counters; }

private:
    pid_t process = -1;
    ResponderCounters* counters = nullptr;
};

/// "127.20.x.y" by number.
std::string BenchAddress(int number);

} // namespace harvlink::bench
