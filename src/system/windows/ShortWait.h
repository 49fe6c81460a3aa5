#pragma once

#include <chrono>

namespace harvlink {

/// Makes the timer of the system fine while it lives, if the wait is short: a wait for 1 ms may last 15 ms otherwise.
/// Not tried on a real Windows.
class ShortWait {
public:
    explicit ShortWait(std::chrono::nanoseconds wait);
    ShortWait(ShortWait const&) = delete;
    ShortWait& operator=(ShortWait const&) = delete;
    ~ShortWait();

    /// Rounded up: a wait that ends too early only spins.
    int Milliseconds() const { return milliseconds; }

private:
    int milliseconds;
    bool isFine;
};

} // namespace harvlink
