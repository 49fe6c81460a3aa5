#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <stop_token>
#include <string>
#include <vector>

#include "soak/FaultJournal.h"
#include "soak/Options.h"
#include "soak/Results.h"
#include "soak/WireImage.h"

namespace harvlink::soak {

using Random = std::mt19937_64;
using SteadyClock = std::chrono::steady_clock;

/// How an answer compares to the expected one.
enum class Answer : std::uint8_t { Right, Missing, Wrong };

/// Produces one kind of load, step by step, on its own thread. It keeps what it has read and written from round to
/// round, as the controllers do.
///
/// What a fault of the controllers explains does not fail the run: an answer is asked for again, and after a step that failed
/// the worker recovers. What none explains does.
class Worker {
public:
    using Journals = std::vector<FaultJournal*>;

    /// The journals of the controllers that it works with.
    Worker(std::string name, Options const& options, Results& results, std::uint64_t seed, Journals journals);
    Worker(Worker const&) = delete;
    Worker& operator=(Worker const&) = delete;
    virtual ~Worker() = default;

    std::string const& Name() const { return name_; }

    /// Repeats Step until a stop is requested. Recovers after a step that a fault made fail, and after a restart.
    void Run(std::stop_token const& stop);

    /// The memory that it needs for the expected contents of the controllers, which may grow. Called between rounds.
    virtual std::size_t KeptBytes() const { return 0; }

    /// The time of the last completed operation.
    SteadyClock::time_point LastProgress() const { return lastProgress_; }

protected:
    virtual void Step() = 0;

    /// Finds or restores a known state of what the worker uses.
    virtual void Recover() {}

    DamageCounts Damages() const;

    /// Whether the controllers damaged an answer, or did not carry out a request, since the counts were taken.
    bool IsDamagedSince(DamageCounts const& before) const { return Damages() != before; }

    /// The counts at the beginning of the step.
    DamageCounts const& StepBegin() const { return stepBegin_; }
    void RecoverAfterStep() { needsRecovery_ = true; }

    /// Counts a completed operation, waits if the rate is limited, and returns the status.
    StatusInfo Done(Family family, StatusInfo status);

    /// Repeats `ask` while answers are missing or damaged. If the answer is wrong or never comes, Fail gets the text
    /// of `describe`, and false is returned.
    bool AskUntilRight(std::string const& what, std::function<Answer()> const& ask,
                       std::function<std::string()> const& describe);

    /// Reads a value that is not known beforehand, until EnoughAlike answers in a row agree. Empty on failure.
    WireImage ReadUntilAgreed(std::string const& what, std::function<StatusInfo(WireImage&)> const& read);

    /// Whether a command was sent, by its status: done, or without an answer. Otherwise the run fails.
    bool IsSent(std::string const& what, StatusInfo const& status);

    /// A single one may be damaged.
    static constexpr int EnoughAlike = 3;

    /// The run fails, unless a fault since the beginning of the step explains it. The worker recovers then.
    void Fail(std::string const& what);
    void WaitForLateReplies() const;
    std::uint64_t Draw(std::uint64_t lowest, std::uint64_t highest);
    bool Chance(double share) { return std::uniform_real_distribution<>(0.0, 1.0)(random_) < share; }

    Options const& options_;
    Results& results_;
    Random random_;

private:
    std::string name_;
    Journals journals_;
    DamageCounts stepBegin_;
    bool needsRecovery_ = false;
    std::atomic<SteadyClock::time_point> lastProgress_ = SteadyClock::now();
    SteadyClock::time_point next_ = SteadyClock::now();
};

/// The number of workers, which share the rate.
inline constexpr double WorkerCount = 7.0;

} // namespace harvlink::soak
