#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <stop_token>
#include <string>

#include "soak/Options.h"
#include "soak/Results.h"
#include "soak/WireImage.h"

namespace harvlink::soak {

using Random = std::mt19937_64;
using SteadyClock = std::chrono::steady_clock;

/// How an answer compares to the expected one.
enum class Answer : std::uint8_t { Right, Cut, LostWrite, Missing, Wrong };

/// Produces one kind of load, step by step, on its own thread. It keeps what it has read and written from round to
/// round, as the controllers do.
class Worker {
public:
    Worker(std::string name, Options const& options, Results& results, std::uint64_t seed);
    Worker(Worker const&) = delete;
    Worker& operator=(Worker const&) = delete;
    virtual ~Worker() = default;

    std::string const& Name() const { return name_; }

    /// Repeats Step until a stop is requested.
    void Run(std::stop_token const& stop);

    /// The memory that it needs for the expected contents of the controllers, which may grow. Called between rounds.
    virtual std::size_t KeptBytes() const { return 0; }

    /// The time of the last completed operation.
    SteadyClock::time_point LastProgress() const { return lastProgress_; }

protected:
    virtual void Step() = 0;

    /// Counts a completed operation, waits if the rate is limited, and returns the status.
    StatusInfo Done(Family family, StatusInfo status);

    /// Repeats `ask` while answers are missing or cut. If the answer is wrong or never comes, the run fails with the
    /// text of `describe`, and false is returned.
    bool AskUntilRight(std::string const& what, std::function<Answer()> const& ask,
                       std::function<std::string()> const& describe);

    /// Reads a value that is not known beforehand, until EnoughAlike answers in a row agree. Of two different answers
    /// one must be a cut form of the other, unless the value `isComputed` from an answer. Empty on failure.
    WireImage ReadUntilAgreed(std::string const& what, std::function<StatusInfo(WireImage&)> const& read,
                              bool isComputed = false);

    /// Whether a command was sent, by its status: done, or without an answer. Otherwise the run fails.
    bool IsSent(std::string const& what, StatusInfo const& status);

    /// Two answers that are cut at the same place occur about once an hour.
    static constexpr int EnoughAlike = 3;

    void Fail(std::string const& what);
    void WaitForLateReplies() const;
    std::uint64_t Draw(std::uint64_t lowest, std::uint64_t highest);
    bool Chance(double share) { return std::uniform_real_distribution<>(0.0, 1.0)(random_) < share; }

    Options const& options_;
    Results& results_;
    Random random_;

private:
    std::string name_;
    std::atomic<SteadyClock::time_point> lastProgress_ = SteadyClock::now();
    SteadyClock::time_point next_ = SteadyClock::now();
};

/// The number of workers, which share the rate.
inline constexpr double WorkerCount = 7.0;

} // namespace harvlink::soak
