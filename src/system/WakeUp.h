#pragma once

#include <chrono>

#include "system/NativeSocket.h"

namespace harvlink {

/// Wakes threads that wait for a descriptor. Set stays set until Clear.
class WakeUp {
public:
    WakeUp();
    WakeUp(WakeUp const&) = delete;
    WakeUp& operator=(WakeUp const&) = delete;
    ~WakeUp();

    bool IsOpen() const { return readEnd != NoSocket; }
    NativeSocket Descriptor() const { return readEnd; }

    void Set() const;
    void Clear() const;

    /// Returns whether it is set, after waiting for at most so long.
    bool Wait(std::chrono::milliseconds time) const;

private:
    NativeSocket readEnd = NoSocket;
    NativeSocket writeEnd = NoSocket;
};

} // namespace harvlink
