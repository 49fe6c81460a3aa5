#include "soak/ValuesWorker.h"

#include <algorithm>
#include <functional>

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

/// Every bit that is set in one of the two.
WireImage Union(WireImage const& one, WireImage const& other) {
    auto both = one;
    std::transform(one.begin(), one.end(), other.begin(), both.begin(), std::bit_or<>());
    return both;
}

/// Whether cut replies explain the value. If it is read or written in pieces, any piece may be missing.
bool IsCut(ValueKind const& kind, WireImage const& whole, WireImage const& got) {
    return IsCutFrom(whole, got) || (kind.isPiecewise && IsMixture(WireImage(got.size(), 0), whole, got));
}

} // namespace

ValuesWorker::ValuesWorker(std::string name, Options const& options, Results& results, std::uint64_t seed,
                           std::vector<ValueKind> kinds)
    : Worker(std::move(name), options, results, seed), kinds_(std::move(kinds)) {
    for (auto const& kind : kinds_) {
        cells_.emplace_back(kind.count, Cell{WireImage(kind.size, 0), {}});
    }
}

void ValuesWorker::Step() {
    auto const number = Draw(0, kinds_.size() - 1);
    auto const& kind = kinds_[number];
    auto const index = static_cast<unsigned>(Draw(0, kind.count - 1));
    auto& cell = cells_[number][index];
    bool const isSettled = SteadyClock::now() - cell.written >= options_.SettleTime();
    if (isSettled && Chance(0.5)) {
        Write(kind, index, cell);
    } else {
        Check(kind, index, cell);
    }
}

void ValuesWorker::Write(ValueKind const& kind, unsigned index, Cell& cell) {
    auto const wanted = kind.random(random_);
    auto const before = cell.value;
    auto const what = fmt::format("write of {} {}", kind.name, index);
    auto const status = Done(kind.family, kind.write(index, wanted));
    cell.written = SteadyClock::now();
    if (!IsSent(what, status)) {
        return;
    }
    bool const isWhole = status.StatusCode == 0 || !kind.isPiecewise;
    // A write that failed halfway leaves some bits of the former value. A cut read then lacks some bits of both.
    auto const possible = isWhole ? wanted : Union(before, wanted);
    auto& got = cell.value;
    WireImage last;
    int alike = 0;
    auto const ask = [&] {
        auto const answer = Read(kind, index, got);
        if (answer != Answer::Right || (isWhole && got == wanted)) {
            return answer;
        }
        alike = got == last ? alike + 1 : 1;
        last = got;
        bool const isAgreed = alike >= EnoughAlike;
        if (!isWhole && IsMixture(before, wanted, got)) {
            // The status said that the write failed. A cut answer looks like a mixture too, so the reads must agree.
            return isAgreed ? Answer::Right : Answer::Missing;
        }
        if (kind.isReadAndWritten && isAgreed && IsCut(kind, possible, got)) {
            results_.Note(FaultEffect::CutAnswer);
            return Answer::Right; // the cut answer was the one that the write began with
        }
        // The first time, the former value may also be a cut answer.
        auto const reason = Compare(kind, before, possible, got);
        return reason == Answer::LostWrite && alike == 1 ? Answer::Cut : reason;
    };
    AskUntilRight(what, ask, [&] { return fmt::format("{} instead of {}", ToHex(got), ToHex(wanted)); });
}

void ValuesWorker::Check(ValueKind const& kind, unsigned index, Cell const& cell) {
    WireImage got;
    auto const ask = [&] {
        auto const answer = Read(kind, index, got);
        if (answer != Answer::Right || got == cell.value) {
            return answer;
        }
        return IsCut(kind, cell.value, got) ? Answer::Cut : Answer::Wrong;
    };
    AskUntilRight(fmt::format("read of {} {}", kind.name, index), ask,
                  [&] { return fmt::format("{} instead of {}", ToHex(got), ToHex(cell.value)); });
}

/// Right if anything was read.
Answer ValuesWorker::Read(ValueKind const& kind, unsigned index, WireImage& got) {
    auto const status = Done(kind.family, kind.read(index, got));
    if (IsTimeout(status)) {
        return Answer::Missing;
    }
    return status.StatusCode == 0 ? Answer::Right : Answer::Wrong;
}

/// Classifies a successful write whose value reads differently.
Answer ValuesWorker::Compare(ValueKind const& kind, WireImage const& before, WireImage const& wanted,
                             WireImage const& got) const {
    if (options_.badNetwork && (got == before || (kind.isPiecewise && IsMixture(before, wanted, got)))) {
        return Answer::LostWrite;
    }
    bool const isCut = IsCut(kind, wanted, got) || (options_.badNetwork && IsCut(kind, before, got));
    return isCut ? Answer::Cut : Answer::Wrong;
}

} // namespace harvlink::soak
