#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>

#include "cli/watch/Frame.h"
#include "cli/watch/Reader.h"

namespace harvlink::cli::watch {

/// Looks at a controller from a thread of its own, so that keys are heard while an answer is waited for. Its end waits for
/// the exchange that is going on.
class Feed {
public:
    Feed(Reader& reader, std::chrono::milliseconds interval);
    Feed(Feed const&) = delete;
    Feed& operator=(Feed const&) = delete;
    ~Feed();

    /// The newest frame, once. Throws what looking has thrown.
    std::optional<Frame> Take();

    /// Becomes readable when there is something to take.
    int Descriptor() const { return wake_[0]; }

private:
    void Run();

    Reader& reader_;
    std::chrono::milliseconds interval_;
    std::array<int, 2> wake_{-1, -1};
    std::mutex mutex_;
    std::condition_variable ended_;
    bool hasEnded_ = false;
    std::optional<Frame> newest_;
    std::exception_ptr failure_;
    std::thread thread_;
};

} // namespace harvlink::cli::watch
