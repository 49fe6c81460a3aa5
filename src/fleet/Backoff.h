#pragma once

#include <algorithm>
#include <cstdint>

namespace harvlink::fleet {

/// The pauses before a silent controller is asked again: from half a second to half a minute, each about twice the one
/// before. They are scattered, so that a hundred controllers behind one switch do not come back at once.
class Backoff {
public:
    explicit Backoff(std::uint32_t seed) : random(seed * 2654435761U + 1) {}

    void Reset() { base = shortest; }

    /// Nanoseconds.
    std::int64_t Next() {
        random = random * 1664525U + 1013904223U;
        std::int64_t const scatter = std::min(base / 2, longest - base);
        std::int64_t const pause = base + scatter / 65536 * (random >> 16U);
        base = std::min(base * 2, longest / 3 * 2);
        return pause;
    }

private:
    static constexpr std::int64_t shortest = 500'000'000;
    static constexpr std::int64_t longest = 30'000'000'000;

    std::int64_t base = shortest;
    std::uint32_t random;
};

} // namespace harvlink::fleet
