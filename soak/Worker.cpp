#include "soak/Worker.h"

#include <thread>
#include <utility>

#include <fmt/format.h>

namespace harvlink::soak {

namespace {

constexpr int MaxTries = 30;

} // namespace

Worker::Worker(std::string name, Options const& options, Results& results, std::uint64_t seed, Journals journals)
    : options_(options),
      results_(results),
      random_(options.seed * 1000 + seed),
      name_(std::move(name)),
      journals_(std::move(journals)) {}

void Worker::Run(std::stop_token const& stop) {
    lastProgress_ = SteadyClock::now();
    next_ = SteadyClock::now();
    while (!stop.stop_requested()) {
        auto const begin = Damages();
        bool const hasRestarted = begin.Of(Damage::Restart) != stepBegin_.Of(Damage::Restart);
        bool const recovers = std::exchange(needsRecovery_, false) || hasRestarted;
        stepBegin_ = begin;
        recovers ? Recover() : Step();
    }
}

DamageCounts Worker::Damages() const {
    DamageCounts sum;
    for (auto* const journal : journals_) {
        sum += journal->Counts();
    }
    return sum;
}

StatusInfo Worker::Done(Family family, StatusInfo status) {
    results_.Note(family, status);
    lastProgress_ = SteadyClock::now();
    if (options_.rate > 0.0) {
        std::this_thread::sleep_until(next_);
        auto const period = std::chrono::duration<double>(WorkerCount / options_.rate);
        next_ = std::max(next_, SteadyClock::now() - std::chrono::seconds(1)) +
                std::chrono::duration_cast<SteadyClock::duration>(period);
    }
    return status;
}

bool Worker::AskUntilRight(std::string const& what, std::function<Answer()> const& ask,
                           std::function<std::string()> const& describe) {
    for (int tries = 0; tries < MaxTries; ++tries) {
        auto const before = Damages();
        auto const answer = ask();
        if (answer == Answer::Right) {
            return true;
        }
        if (answer == Answer::Missing) {
            continue;
        }
        if (!IsDamagedSince(before)) {
            Fail(fmt::format("{}: {}", what, describe()));
            return false;
        }
        results_.Note(FaultEffect::DamagedAnswer);
    }
    Fail(fmt::format("{}: no answer in {} tries", what, MaxTries));
    return false;
}

WireImage Worker::ReadUntilAgreed(std::string const& what, std::function<StatusInfo(WireImage&)> const& read) {
    WireImage last;
    WireImage got;
    std::string refusal;
    int alike = 0;
    auto const ask = [&] {
        auto const before = Damages();
        auto const status = read(got);
        if (IsTimeout(status) || IsDamagedSince(before)) {
            return Answer::Missing; // of a value that is not known, a damaged one can't be recognised
        }
        if (status.StatusCode != 0) {
            refusal = fmt::format(" and refused with {} {}", status.StatusCode, status.Message);
            return Answer::Wrong;
        }
        if (alike > 0 && got != last) {
            return Answer::Wrong;
        }
        last = got;
        return ++alike >= EnoughAlike ? Answer::Right : Answer::Missing;
    };
    bool const isAgreed = AskUntilRight(what, ask, [&] { return ToHex(got) + " after " + ToHex(last) + refusal; });
    return isAgreed ? last : WireImage();
}

bool Worker::IsSent(std::string const& what, StatusInfo const& status) {
    bool const isSent = status.StatusCode == 0 || IsTimeout(status);
    if (!isSent) {
        Fail(fmt::format("{}: refused with {} {}", what, status.StatusCode, status.Message));
    }
    return isSent;
}

void Worker::Fail(std::string const& what) {
    if (IsDamagedSince(stepBegin_)) {
        results_.Note(FaultEffect::InterruptedStep);
        RecoverAfterStep();
        return;
    }
    results_.Fail(fmt::format("{}: {}", name_, what));
}

void Worker::WaitForLateReplies() const {
    std::this_thread::sleep_for(options_.SettleTime());
}

std::uint64_t Worker::Draw(std::uint64_t lowest, std::uint64_t highest) {
    return std::uniform_int_distribution<std::uint64_t>(lowest, highest)(random_);
}

} // namespace harvlink::soak
