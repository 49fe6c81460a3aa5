#pragma once

#include <functional>

#include <sys/types.h>

namespace harvlink::bench {

/// A process of its own for an answering side, so that its cost and its memory are not the client's. It dies with its
/// parent, and when this object goes.
class ChildProcess {
public:
    /// Runs `body` in the child, on one core (-1: any), and returns when it says that it is ready. Throws if it never
    /// does. Start no threads before.
    ChildProcess(int core, std::function<void(std::function<void()> const& ready)> const& body);
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;
    ~ChildProcess();

private:
    pid_t process = -1;
};

} // namespace harvlink::bench
