#include "behaviour/FaultCase.h"

namespace harvlink::test {
namespace {

constexpr unsigned readState = 114;
constexpr unsigned lastFileService = 0x32;

// The only place that says where strict connections differ.
constexpr Difference differences[] = {
    {Edge::SilenceAtIdZero, Rule::SilenceIsTimeout, timeoutCode,
     "No response from controller after 2 retries. (rule SilenceIsTimeout)"},
    {Edge::AnswerToSomethingElse, Rule::FittingAnswer, timeoutCode,
     "No response from controller after 2 retries. (rule FittingAnswer)"},
    {Edge::ShortRecord, Rule::WholeAnswer, 0x50003, "The answer is shorter than its record. (rule WholeAnswer)"},
    {Edge::StaleRepliesInEachPeriod, Rule::Deadline, 0, ""},
    {Edge::LostAnswerToRead, Rule::RepeatReads, 0, ""},
    {Edge::ListThatWasNotOpened, Rule::BlockOrder, timeoutCode, "No response from controller after 2 retries."},
};

} // namespace

Bytes WithStatus(Bytes reply, std::uint8_t status, std::uint8_t size, std::uint16_t added) {
    SetStatus(reply, status, size, added);
    return reply;
}

Bytes WithPayloadSize(Bytes reply) {
    std::ranges::copy(U16(static_cast<std::int64_t>(reply.size() - replyHeader)), reply.begin() + 6);
    return reply;
}

Bytes WithoutPayload(Bytes reply) {
    reply.resize(replyHeader);
    return WithPayloadSize(reply);
}

Bytes Stale(Bytes reply) {
    reply[idOffset] = static_cast<std::uint8_t>(reply[idOffset] - 1);
    std::fill(reply.begin() + replyHeader, reply.end(), std::uint8_t{0x77});
    return WithStatus(reply, 0x1f, 2, 1);
}

Bytes Cut(Bytes reply, std::size_t length) {
    reply.resize(length);
    return reply;
}

Datagrams Silence(Bytes const& /*good*/) {
    return {};
}

std::vector<ConnectionWay> const& ConnectionWays() {
    static std::vector<ConnectionWay> const ways{
        {"Designed", {}}, {"Strict", {.enforced = StrictRules}}, {"Audit", {.audited = StrictRules}}};
    return ways;
}

void PrintTo(ConnectionWay const& way, std::ostream* stream) {
    *stream << way.name;
}

Difference const& DifferenceAt(Edge edge) {
    return *std::ranges::find(differences, edge, &Difference::edge);
}

bool Case::IsFile() const {
    return operation.script[step].command <= lastFileService;
}

bool Case::IsRead() const {
    bool const isAcknowledgement = IsFile() && step > 0;
    // A bit is written into the byte that was read before.
    bool const isReadOfWrite = operation.name.ends_with("WriteBit") && operation.script.size() == 2 && step == 0;
    return !isAcknowledgement && (operation.hasOutput || isReadOfWrite || operation.script[step].command == readState);
}

/// A strict list needs the answer that opens it, as that brings its first block.
bool Case::IsLossIgnored(std::size_t lost) const {
    return operation.traits.ignored.contains(lost) && !(IsFile() && way.IsStrict());
}

Outcome Case::WithFault(ReplyFault fault, bool affectsAllFollowing) const {
    return Run(robot, std::move(fault), affectsAllFollowing);
}

Outcome Case::With(Bytes (*change)(Bytes)) const {
    return WithFault([=](Bytes const& reply) { return Datagrams{change(reply)}; });
}

Outcome Case::AsDesigned(ReplyFault fault) const {
    return Run(designed, std::move(fault), false);
}

Outcome Case::Run(Robot& on, ReplyFault fault, bool affectsAllFollowing) const {
    GoToId(on, 1, 100);
    Script script = operation.script;
    script.insert(script.end(), operation.traits.afterFailure.begin(), operation.traits.afterFailure.end());
    on.machine.Play(std::move(script), step, std::move(fault), affectsAllFollowing);
    return operation.call(on);
}

void Case::ExpectFailure(Outcome const& outcome, std::size_t failed, int code, std::string const& message) const {
    Traits const& traits = operation.traits;
    auto const own = traits.codes.find(code);
    EXPECT_EQ(outcome.status.StatusCode, own == traits.codes.end() ? code : own->second);
    if (!message.empty()) {
        EXPECT_EQ(outcome.status.Message, traits.failureMessage.empty() ? message : traits.failureMessage);
    }
    EXPECT_EQ(outcome.image, operation.imageAfterFailure(failed));
    EXPECT_EQ(outcome.exchanges, failed + 1 + traits.afterFailure.size());
    EXPECT_FALSE(outcome.threw);
}

void Case::ExpectTimeout(Outcome const& outcome, std::size_t failed) const {
    ExpectFailure(outcome, failed, timeoutCode, "No response from controller after 2 retries.");
}

void Case::ExpectRefusal(std::uint8_t status, std::uint8_t size, std::uint16_t added,
                         std::string const& message) const {
    for (bool const hasPayload : {false, true}) {
        SCOPED_TRACE(testing::Message() << (hasPayload ? "with" : "without") << " payload, code " << added);
        auto const refusal = [&](Bytes const& reply) {
            return Datagrams{WithStatus(hasPayload ? reply : WithoutPayload(reply), status, size, added)};
        };
        Outcome outcome = WithFault(refusal);
        if (IsIgnored()) {
            EXPECT_EQ(outcome, hasPayload ? good : With(WithoutPayload));
            continue;
        }
        if (hasPayload && operation.traits.decodesRefusals) {
            EXPECT_EQ(outcome.image, good.image);
            outcome.image = operation.imageAfterFailure(step);
        }
        ExpectFailure(outcome, step, added != 0 ? added : status, message);
    }
}

void Case::ExpectEdge(Edge edge, ReplyFault const& fault, Outcome const& asDesigned) const {
    auto const& [unused, rule, code, message] = DifferenceAt(edge);
    std::uint64_t const before = robot.CountOf(rule);
    Outcome const outcome = WithFault(fault);
    std::uint64_t const after = robot.CountOf(rule);
    if (!way.policy.Enforces(rule)) {
        EXPECT_EQ(outcome, asDesigned);
    } else if (code == 0) {
        EXPECT_EQ(outcome, good);
    } else if (IsLossIgnored(step)) {
        EXPECT_EQ(outcome, WithFault(Silence));
    } else {
        ExpectFailure(outcome, step, code, message);
    }
    EXPECT_EQ(after > before, way.policy.Watches(rule)) << RuleName(rule) << " counted " << after - before;
}

void Case::ExpectNextWorks() const {
    robot.machine.Play(operation.script);
    EXPECT_EQ(operation.call(robot), good) << "the next operation";
    EXPECT_FALSE(robot.machine.HasPending());
    EXPECT_EQ(robot.machine.Period(), Robot::timeout * 1000L);
}

void Case::GoToId(Robot& on, std::size_t lowest, std::size_t highest) {
    ControllerStateData ignored;
    while (on.machine.NextId() < lowest || on.machine.NextId() > highest) {
        on.machine.Play({{readState, Bytes(8)}});
        on.controller->Status->ReadState(ignored);
    }
}

} // namespace harvlink::test
