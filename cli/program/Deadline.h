#pragma once

#include <chrono>

namespace harvlink::cli {

/// Ends the process with ExitStatus::Failure, whatever it waits for, if this object still lives after the time. One at a time.
class Deadline {
public:
    explicit Deadline(std::chrono::milliseconds time); ///< less than a second
    Deadline(Deadline const&) = delete;
    Deadline& operator=(Deadline const&) = delete;
    ~Deadline();
};

} // namespace harvlink::cli
