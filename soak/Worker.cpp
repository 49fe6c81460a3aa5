#include "soak/Worker.h"

#include <thread>

#include <fmt/format.h>

namespace harvlink::soak {

namespace {

constexpr int MaxTries = 30;
constexpr int MaxCuts = 5;

} // namespace

Worker::Worker(std::string name, Options const& options, Results& results, std::uint64_t seed)
    : options_(options), results_(results), random_(options.seed * 1000 + seed), name_(std::move(name)) {}

void Worker::Run(std::stop_token const& stop) {
    lastProgress_ = SteadyClock::now();
    next_ = SteadyClock::now();
    while (!stop.stop_requested()) {
        Step();
    }
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
    int cuts = 0;
    for (int tries = 0; tries < MaxTries; ++tries) {
        switch (ask()) {
        case Answer::Right:
            return true;
        case Answer::LostWrite:
            results_.Note(FaultEffect::LostWrite);
            return true;
        case Answer::Missing:
            continue;
        case Answer::Cut:
            results_.Note(FaultEffect::CutAnswer);
            if (++cuts <= MaxCuts) {
                continue;
            }
            [[fallthrough]];
        case Answer::Wrong:
            Fail(fmt::format("{}: {}", what, describe()));
            return false;
        }
    }
    Fail(fmt::format("{}: no answer in {} tries", what, MaxTries));
    return false;
}

WireImage Worker::ReadUntilAgreed(std::string const& what, std::function<StatusInfo(WireImage&)> const& read,
                                  bool isComputed) {
    WireImage last;
    WireImage got;
    std::string refusal;
    int alike = 0;
    auto const ask = [&] {
        auto const status = read(got);
        if (IsTimeout(status)) {
            return Answer::Missing;
        }
        if (status.StatusCode != 0) {
            refusal = fmt::format(" and refused with {} {}", status.StatusCode, status.Message);
            return isComputed ? Answer::Cut : Answer::Wrong;
        }
        std::swap(last, got);
        if (got.empty() || got == last) {
            return ++alike >= EnoughAlike ? Answer::Right : Answer::Missing;
        }
        alike = 1;
        // NOLINTNEXTLINE(readability-suspicious-call-argument): either may be the one that was cut
        return isComputed || IsCutFrom(last, got) || IsCutFrom(got, last) ? Answer::Cut : Answer::Wrong;
    };
    bool const isAgreed = AskUntilRight(what, ask, [&] { return ToHex(got) + " and then " + ToHex(last) + refusal; });
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
    results_.Fail(fmt::format("{}: {}", name_, what));
}

void Worker::WaitForLateReplies() const {
    std::this_thread::sleep_for(options_.SettleTime());
}

std::uint64_t Worker::Draw(std::uint64_t lowest, std::uint64_t highest) {
    return std::uniform_int_distribution<std::uint64_t>(lowest, highest)(random_);
}

} // namespace harvlink::soak
