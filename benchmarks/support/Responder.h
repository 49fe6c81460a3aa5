#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support/ChildProcess.h"

namespace harvlink::bench {

/// What the answering process reports about the datagrams that it received.
struct ResponderCounters {
    std::atomic<std::uint64_t> datagrams;
    std::atomic<std::uint64_t> targets; ///< motion targets among them
    std::atomic<std::int64_t> lastTargetAt; ///< wall clock, nanoseconds
};

/// When a motion target counts as received: when the answering process reads it, or, at the price of a system call each,
/// when the kernel had it. The latter leaves out how long the process took to wake up.
enum class ArrivalTime { Read, Kernel };

/// The answering side: a process of its own that does as little as it can, so that it does not hide the client's cost.
/// It answers every request with status 0 and a payload of the right size, and serves one file of any size.
class Responder {
public:
    /// Answers on each of the addresses, on one core (-1: any), `delay` after it has read the request.
    Responder(std::vector<std::string> const& addresses, int core, ArrivalTime arrivalTime = ArrivalTime::Read,
              std::chrono::microseconds delay = {});

    ResponderCounters& Counters() { return *counters; }

private:
    struct Unmap {
        void operator()(ResponderCounters* mapped) const;
    };
    std::unique_ptr<ResponderCounters, Unmap> counters; ///< shared with the process
    ChildProcess process;
};

/// A UDP socket bound to a port of an address. Throws if the port is not free.
int BindSocket(std::string const& address, std::uint16_t port);

/// "127.20.x.y" by number.
std::string BenchAddress(int number);

} // namespace harvlink::bench
