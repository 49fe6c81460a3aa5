#pragma once

#include "behaviour/Operation.h"

/// @file
/// One exchange of one operation gets a fault, over one of the three ways to connect.

namespace harvlink::test {

inline constexpr int timeoutCode = 0x30006;
inline constexpr std::size_t replyHeader = 32;

Bytes WithStatus(Bytes reply, std::uint8_t status, std::uint8_t size, std::uint16_t added);
Bytes WithPayloadSize(Bytes reply); ///< the header names what there is
Bytes WithoutPayload(Bytes reply);
Bytes Stale(Bytes reply); ///< the id of the exchange before, and another content
Bytes Cut(Bytes reply, std::size_t length);
Datagrams Silence(Bytes const& good);

/// A way to connect.
struct ConnectionWay {
    char const* name;
    ConnectionPolicy policy;

    bool IsStrict() const { return policy.enforced.bits != 0; }
};
void PrintTo(ConnectionWay const& way, std::ostream* stream);

std::vector<ConnectionWay> const& ConnectionWays(); ///< designed, strict, audit

/// A fault of which a strict connection makes something else than a designed one. All other faults end alike.
enum class Edge : std::uint8_t {
    SilenceAtIdZero,
    AnswerToSomethingElse,
    ShortRecord,
    StaleRepliesInEachPeriod,
    LostAnswerToRead,
    ListThatWasNotOpened,
};

/// What a strict connection makes of it, and by which rule.
struct Difference {
    Edge edge;
    Rule rule;
    int code; ///< 0: the good answer counts
    char const* message;
};
Difference const& DifferenceAt(Edge edge);

struct Case {
    Operation const& operation;
    ConnectionWay const& way;
    Robot& robot;
    Robot& designed; ///< another one, connected the designed way
    std::size_t step;
    Outcome good;

    bool IsIgnored() const { return operation.traits.ignored.contains(step); }
    bool IsFile() const;
    bool IsRead() const; ///< asking twice changes nothing
    bool IsLossIgnored(std::size_t lost) const; ///< that of a whole answer

    /// Runs the operation with the fault in this exchange, or in this one and all that follow.
    Outcome WithFault(ReplyFault fault, bool affectsAllFollowing = false) const;
    Outcome With(Bytes (*change)(Bytes)) const;
    Outcome AsDesigned(ReplyFault fault) const;

    void ExpectFailure(Outcome const& outcome, std::size_t failed, int code, std::string const& message) const;
    void ExpectTimeout(Outcome const& outcome, std::size_t failed) const;

    /// Checks the effect of a refusal, with and without a payload.
    void ExpectRefusal(std::uint8_t status, std::uint8_t size, std::uint16_t added, std::string const& message) const;

    /// Checks that only a strict connection differs from `asDesigned`, and that the rule counts if it is watched.
    void ExpectEdge(Edge edge, ReplyFault const& fault, Outcome const& asDesigned) const;

    void ExpectNextWorks() const;

    /// Reads the state until the next id is in this range. With id 0, silence counts as an empty success.
    void GoToId(std::size_t lowest, std::size_t highest) const { GoToId(robot, lowest, highest); }

private:
    Outcome Run(Robot& on, ReplyFault fault, bool affectsAllFollowing) const;
    static void GoToId(Robot& on, std::size_t lowest, std::size_t highest);
};

} // namespace harvlink::test
