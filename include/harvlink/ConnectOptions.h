#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "harvlink/Export.h"
#include "harvlink/QuorvanController.h"
#include "harvlink/StatusInfo.h"

/// @file
/// Connecting with options: what the connection may send, and which rules hold for what it receives. `OpenConnection` stays
/// beside it and behaves as it always has.

namespace harvlink {

/// What a connection may send. Anything beyond it gives AccessDenied before a datagram leaves, and the text names the access
/// that it takes.
enum class Access : std::int32_t {
    Observe = 0, ///< reads only, opening included: nothing on the controller changes
    Operate = 1, ///< everything but motion by targets, which it may stop and clear; opening reads only
    /// Everything. Opening clears the motion targets of a controller from `VersionYA` up, whoever sent them, unless
    /// `clearTargets` is off.
    Full = 2,
};

/// The rules of a strict connection. Each removes one sharp edge of the designed behaviour, can be left out alone, names
/// itself in the text of what it refuses, and has a counter in ConnectionStatistics. docs/strict.md has them side by side.
enum class Rule : std::uint32_t {
    SilenceIsTimeout = 1U << 0U, ///< silence is never a successful answer of zeros, whatever the request's number
    KnownSender =
        1U << 1U, ///< only the controller's address and the port that was asked; a closed port is reported at once
    RepeatReads = 1U << 2U, ///< a read is asked again in each period; what writes or moves is never sent twice
    FittingAnswer = 1U << 3U, ///< magic, division, header size, service and payload size have to fit the request
    Deadline = 1U << 4U, ///< (1 + retries) x time-out in all, whatever arrives meanwhile
    NewPort =
        1U << 5U, ///< a new source port after a time-out, and where an unread answer's number could come round again
    WholeAnswer = 1U << 6U, ///< an answer shorter than its record fails
    BlockOrder =
        1U << 7U, ///< blocks of a file rise by one; a repeated one is dropped; no more than `largestFile` bytes
    /// A connection opens only if its groups and tools could be read. A controller that refuses the axes of a group or a motion
    /// slot has answered all the same: the group counts as one without an eighth axis, and the slots end there.
    WholeStartUp = 1U << 8U,
    IdleMonitor = 1U << 9U, ///< the thread that feeds motion sleeps while it has nothing to send
    SentStep = 1U << 10U, ///< after a clear, only the step that was sent leaves the queue
    BoundedClose = 1U << 11U, ///< closing, stopping and clearing end the wait for room in the controller's buffer
    NoExceptions = 1U << 12U, ///< no exception leaves any operation: UnreadableTime, OutOfMemory, SystemFailure
};

inline constexpr std::size_t RuleCount = 13;

/// The names of the rules by bit, as texts of refusals, tools and other languages have them.
inline constexpr std::array<std::string_view, RuleCount> RuleNames{
    "SilenceIsTimeout", "KnownSender",  "RepeatReads", "FittingAnswer", "Deadline",     "NewPort",     "WholeAnswer",
    "BlockOrder",       "WholeStartUp", "IdleMonitor", "SentStep",      "BoundedClose", "NoExceptions"};

/// The name of one rule.
constexpr std::string_view RuleName(Rule rule) {
    return RuleNames[static_cast<std::size_t>(std::countr_zero(static_cast<std::uint32_t>(rule)))];
}

/// A set of rules.
struct Rules {
    std::uint32_t bits = 0; ///< a sum of Rule values

    /// Whether the rule is in the set.
    constexpr bool Has(Rule rule) const { return (bits & static_cast<std::uint32_t>(rule)) != 0; }
    /// The set with the rule added.
    constexpr Rules With(Rule rule) const { return {bits | static_cast<std::uint32_t>(rule)}; }
    /// The set with the rule removed.
    constexpr Rules Without(Rule rule) const { return {bits & ~static_cast<std::uint32_t>(rule)}; }
};

inline constexpr Rules NoRules{0}; ///< the designed behaviour
inline constexpr Rules StrictRules{(1U << RuleCount) - 1}; ///< all of them

/// How Connect connects. Every member has a default that suits a first look at a controller.
struct ConnectOptions {
    std::string
        address; ///< IPv4 address in dotted form, or the name of a host; the first IPv4 address of a name counts
    unsigned timeout = 500; ///< milliseconds that an exchange listens before it counts a retry
    unsigned retries = 3; ///< further such periods; an exchange ends after (1 + retries) x timeout at the latest
    bool logging = true; ///< whether motion failures go to "HarvlinkLog.txt" in the working directory
    Access access = Access::Observe;
    Rules rules = StrictRules;
    /// Bytes, codes and texts as designed, while the counters say what each of `rules` would have refused: the safe way into a
    /// plant that runs. `access` holds all the same.
    bool audit = false;
    std::uint64_t largestFile = 256ULL << 20U; ///< bytes; a longer file is not received. Held by Rule::BlockOrder
    /// Whether opening with full access clears the controller's motion targets. Without it what another program has sent
    /// stays, and MotionStart goes on with it. The other accesses never clear when they open.
    bool clearTargets = true;
};

/// Opens a connection with options. A name is resolved by the system first, in (1 + retries) x time-out at most.
///
/// @param options address, time-out, access and rules.
/// @param status "OK", or: InvalidConnectOptions for an address that is neither an IPv4 address nor a name, with nothing sent;
///     NameNotResolved if the system has no IPv4 address for the name, or does not find one in time; ControllerNotListening if
///     the host answers that nobody listens there; ResponseTimeout if nobody answers; SocketOpenError; the controller's code
///     if it refuses a read of the start-up; OutOfMemory.
/// @return the connection, which closes at the end of its scope; empty on failure. Its operations and threads are those of
///     OpenConnection.
[[nodiscard]] HARVLINK_EXPORT Connection Connect(ConnectOptions const& options, StatusInfo& status);

} // namespace harvlink
