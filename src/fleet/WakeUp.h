#pragma once

#include <chrono>

namespace harvlink::fleet {

/// Wakes threads that wait for a descriptor. Set stays set until Clear.
class WakeUp {
public:
    WakeUp();
    WakeUp(WakeUp const&) = delete;
    WakeUp& operator=(WakeUp const&) = delete;
    ~WakeUp();

    bool IsOpen() const { return readEnd >= 0; }
    int Descriptor() const { return readEnd; }

    void Set() const;
    void Clear() const;

    /// Returns whether it is set, after waiting for at most so long.
    bool Wait(std::chrono::milliseconds time) const;

private:
    int readEnd = -1;
    int writeEnd = -1;
};

} // namespace harvlink::fleet
