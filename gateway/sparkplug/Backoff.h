#pragma once

#include <chrono>
#include <cstdint>
#include <random>

namespace harvlink::gateway::sparkplug {

/// Time that nothing but its passing changes; a clock that is set does not.
using Moment = std::chrono::steady_clock::time_point;
using Milliseconds = std::chrono::milliseconds;

/// Why a session ended or did not begin.
enum class Failure {
    Unreachable, ///< no connection, no answer, or a connection that held for a while and is lost
    ThrownOut, ///< the broker closed the connection right after accepting it, as for a second client with the same id, or TLS failed
    Refused, ///< the broker says no: user, password, client id, subscription
};

/// How long to wait before the next attempt: 1 s, doubling, and 20 % less or more so that many nodes do not come at once.
class Backoff {
public:
    explicit Backoff(std::uint32_t seed) : random_(seed) {}

    /// A broker that is merely out of reach is tried at least every 4 s, so that publishing goes on within 5 s of its return. One
    /// that throws this node out has up to 60 s of rest; one that refuses it, 60 s at once.
    Milliseconds Next(Failure failure);
    /// A connection has held for a minute.
    void Reset() { next_ = First; }

private:
    static constexpr Milliseconds First{1000};
    static constexpr Milliseconds LongestUnreachable{4000};
    static constexpr Milliseconds Longest{60'000};

    Milliseconds next_ = First;
    std::minstd_rand random_;
};

} // namespace harvlink::gateway::sparkplug
