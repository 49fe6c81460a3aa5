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

/// What an answer is against what was expected of it.
enum class Answer : std::uint8_t { Right, Cut, LostWrite, Missing, Wrong };

/// Carries out one kind of load, step by step, on a thread of its own. What it learnt and wrote it keeps from round to
/// round: the controllers do too.
class Worker {
public:
    Worker(std::string name, Options const& options, Results& results, std::uint64_t seed);
    Worker(Worker const&) = delete;
    Worker& operator=(Worker const&) = delete;
    virtual ~Worker() = default;

    std::string const& Name() const { return name_; }

    /// Steps until it is asked to stop.
    void Run(std::stop_token const& stop);

    /// What it has to remember of the controllers' contents, and may grow with them. Asked between rounds.
    virtual std::size_t KeptBytes() const { return 0; }

    /// When it last got an operation done.
    SteadyClock::time_point LastProgress() const { return lastProgress_; }

protected:
    virtual void Step() = 0;

    /// Counts an operation that was carried out, keeps the pace, and hands its status on.
    StatusInfo Done(Family family, StatusInfo status);

    /// Asks until the answer is right, over missing and cut ones. False, and the run has failed, if it is wrong or never
    /// comes; `describe` tells what came.
    bool AskUntilRight(std::string const& what, std::function<Answer()> const& ask,
                       std::function<std::string()> const& describe);

    /// Asks until as many answers in a row agree as chance hardly cuts alike. Nothing is known of the right one beforehand,
    /// so one of two different answers must be a cut form of the other, unless `isComputed` from an answer in between.
    /// Empty on failure.
    WireImage ReadUntilAgreed(std::string const& what, std::function<StatusInfo(WireImage&)> const& read,
                              bool isComputed = false);

    /// Whether a command got through, as far as its status tells: done, or without an answer.
    bool IsSent(std::string const& what, StatusInfo const& status);

    /// Two answers that were cut at the same place come about once an hour.
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

/// How many workers there are, among whom the rate is divided.
inline constexpr double WorkerCount = 7.0;

} // namespace harvlink::soak
