#include "soak/ValuesWorker.h"

#include <fmt/format.h>

namespace harvlink::soak {

namespace {

/// Whether every bit comes from one of the two.
bool IsMixture(WireImage const& one, WireImage const& other, WireImage const& got) {
    for (std::size_t i = 0; i < got.size(); ++i) {
        if (((got[i] ^ one[i]) & (got[i] ^ other[i])) != 0) {
            return false;
        }
    }
    return true;
}

} // namespace

ValuesWorker::ValuesWorker(std::string name, Options const& options, Results& results, std::uint64_t seed,
                           Journals journals, std::vector<ValueKind> kinds)
    : Worker(std::move(name), options, results, seed, std::move(journals)), kinds_(std::move(kinds)) {
    for (auto const& kind : kinds_) {
        cells_.emplace_back(kind.count, Cell{WireImage(kind.size, 0), {}});
    }
}

void ValuesWorker::Step() {
    lastKind_ = Draw(0, kinds_.size() - 1);
    auto const& kind = kinds_[lastKind_];
    auto const index = lastIndex_ = static_cast<unsigned>(Draw(0, kind.count - 1));
    auto& cell = cells_[lastKind_][index];
    lastBefore_ = lastWanted_ = cell.value;
    bool const isSettled = SteadyClock::now() - cell.written >= options_.SettleTime();
    if (isSettled && Chance(0.5)) {
        Write(kind, index, cell);
    } else {
        Check(kind, index, cell);
    }
}

void ValuesWorker::Write(ValueKind const& kind, unsigned index, Cell& cell) {
    lastWanted_ = kind.random(random_);
    auto const status = Done(kind.family, kind.write(index, lastWanted_));
    cell.written = SteadyClock::now();
    if (status.StatusCode == 0) {
        cell.value = lastWanted_;
        Check(kind, index, cell);
    } else if (IsSent(fmt::format("write of {} {}", kind.name, index), status)) {
        FindOut(options_.badNetwork || IsDamagedSince(StepBegin()));
    }
}

void ValuesWorker::Recover() {
    if (!lastBefore_.empty()) { // else there was no step yet
        FindOut(true);
    }
}

/// Learns the value after a write that was not confirmed: the new one, or the one from before if the request may not have
/// been carried out. A write of several exchanges can leave a mixture, and one that begins with a damaged read anything.
void ValuesWorker::FindOut(bool mayBeLost) {
    auto const& kind = kinds_[lastKind_];
    auto const what = fmt::format("{} {} after a write without an answer", kind.name, lastIndex_);
    auto const got =
        ReadUntilAgreed(what, [&](WireImage& image) { return Done(kind.family, kind.read(lastIndex_, image)); });
    if (got.empty()) {
        return;
    }
    bool const isExplained = got == lastWanted_ || (mayBeLost && (got == lastBefore_ || kind.isReadAndWritten)) ||
                             (kind.isPiecewise && IsMixture(lastBefore_, lastWanted_, got));
    if (!isExplained) {
        Fail(fmt::format("{}: {} instead of {} or {}", what, ToHex(got), ToHex(lastWanted_), ToHex(lastBefore_)));
    }
    cells_[lastKind_][lastIndex_].value = lastBefore_ = lastWanted_ = got;
}

void ValuesWorker::Check(ValueKind const& kind, unsigned index, Cell const& cell) {
    WireImage got;
    auto const ask = [&] {
        auto const status = Done(kind.family, kind.read(index, got));
        if (IsTimeout(status)) {
            return Answer::Missing;
        }
        return status.StatusCode == 0 && got == cell.value ? Answer::Right : Answer::Wrong;
    };
    AskUntilRight(fmt::format("{} {}", kind.name, index), ask,
                  [&] { return fmt::format("{} instead of {}", ToHex(got), ToHex(cell.value)); });
}

} // namespace harvlink::soak
