#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string_view>

#include "harvlink/ConnectOptions.h"
#include "harvlink/StatusInfo.h"

namespace harvlink::cli {

/// What a counter of a rule says, and what it can't say.
struct RuleMeaning {
    std::string_view counts; ///< what happened that often, such as "answers that did not fit their request"
    bool needsMotion = false; ///< an audit moves nothing, so that it can't see a breach
};

RuleMeaning const& MeaningOf(Rule rule);

/// What a strict connection would meet at a controller. Only reads, through connections that observe.
struct AuditReport {
    bool isDone = false; ///< false: it was not asked for, or the controller does not answer well enough to connect
    StatusInfo designed{}; ///< why no connection could be opened as designed, after which nothing was audited
    std::uint64_t exchanges = 0; ///< in which the rules were audited
    std::array<std::uint64_t, RuleCount> counts{}; ///< how often each rule would have refused something, by bit
    StatusInfo strict{}; ///< the first failure of a strict connection that its link or a rule caused
    std::uint64_t strictExchanges = 0;

    bool StrictWorks() const { return strict.StatusCode == 0; }
};

/// Connects and reads as designed while the rules only count, then the same through a strict connection: a little of all, and the state
/// up to `readings` times. Each takes a few seconds at most. Ends early if `goesOn()` returns false.
AuditReport AuditController(ConnectOptions const& options, unsigned readings, std::function<bool()> const& goesOn);

} // namespace harvlink::cli
