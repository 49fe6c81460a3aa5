#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "harvlink/ConnectOptions.h"

namespace harvlink {

/// The few places where a connection differs from the designed behaviour ask this record: the engine, the file transfer and
/// the trajectory monitor. As constructed it is the designed behaviour itself.
struct ConnectionPolicy {
    Access access = Access::Full;
    Rules enforced = NoRules;
    Rules audited = NoRules; ///< only counted
    std::uint64_t largestFile = std::numeric_limits<std::uint64_t>::max();
    bool clearTargets = true;

    /// Whether opening clears the controller's motion targets.
    constexpr bool ClearsTargets() const { return access == Access::Full && clearTargets; }

    constexpr bool Enforces(Rule rule) const { return enforced.Has(rule); }

    /// Whether a breach of the rule counts, enforced or not.
    constexpr bool Watches(Rule rule) const { return enforced.Has(rule) || audited.Has(rule); }
};

/// The status with its rule at the end of the text, as every refusal has it.
inline StatusInfo NamingRule(StatusInfo status, Rule rule) {
    status.Message.append(" (rule ").append(RuleName(rule)).append(")");
    return status;
}

/// What a request gets that takes more access than the connection has.
inline StatusInfo Denied(Access needed) {
    std::string const name = needed == Access::Operate ? "Operate" : "Full";
    return StatusInformation(ErrorStatusCodes::AccessDenied,
                             "The access of this connection does not allow this, which takes access " + name +
                                 ". Nothing was sent.");
}

} // namespace harvlink
