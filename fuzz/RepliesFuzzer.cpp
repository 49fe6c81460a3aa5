#include <csignal>

#include "FuzzedConnection.h"
#include "motion/MotionManager.h"
#include "tests/behaviour/Operation.h"

// The replies to every operation, by method and by plain function, in the table of the tests; to the targets that the
// monitor sends; and to the opening of a connection. Input: operation, generation, rules, answers.

namespace harvlink::test {

// Memory and system calls do not fail here.
NotCounted::NotCounted() = default;
// NOLINTNEXTLINE(modernize-use-equals-default): would be trivial, which it is not elsewhere
NotCounted::~NotCounted() {}
Failure::Scope::Scope(Failure* /*planned*/) {}
// NOLINTNEXTLINE(modernize-use-equals-default): likewise
Failure::Scope::~Scope() {}

} // namespace harvlink::test

namespace harvlink::fuzz {

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
    testing::GTEST_FLAG(break_on_failure) = true;
    std::signal(SIGTRAP, [](int) { std::abort(); }); // by which the fuzzer keeps the input
    return 0;
}

namespace {

using test::Operation;
using test::Outcome;
using test::Robot;

constexpr ConnectionPolicy policies[] = {{}, {.enforced = StrictRules}, {.audited = StrictRules}};

/// What arrives in place of the correct reply.
test::Datagrams Take(Answers& answers, test::Bytes const& good) {
    if (answers.empty()) {
        return {};
    }
    auto const [kind, offset, bytes] = std::move(answers.front());
    answers.pop_front();
    auto const* const first = reinterpret_cast<std::uint8_t const*>(bytes.data());
    test::Bytes reply(first, first + bytes.size());
    if (kind == Answer::Kind::Raw && reply.size() > test::idOffset) {
        reply[test::idOffset] = good[test::idOffset];
    } else if (kind <= Answer::Kind::Cut) {
        reply = good;
        reply.resize(kind == Answer::Kind::Cut ? std::min<std::size_t>(offset, good.size()) : good.size());
        for (std::size_t i = 0; kind == Answer::Kind::Bent && i < bytes.size() && offset + i < good.size(); ++i) {
            reply[offset + i] ^= first[i];
        }
    }
    return {reply};
}

void RequireUsable(Robot& robot) {
    ControllerStateData state;
    for (int reads = 0; reads < 1000 && robot.machine.HasPending(); ++reads) {
        robot.machine.Play({{114, test::Bytes(8)}});
        robot.controller->Status->ReadState(state);
    }
    robot.machine.Play({{114, test::Words({0x80, 0x40})}});
    Require(robot.controller->Status->ReadState(state).StatusCode == 0, "the next operation works");
    Require(state.controlMode == ControllerStateData::ControlMode::Remote && state.isServoOn && !state.isAlarming,
            "the next operation reads its answer");
}

void Run(Operation const& operation, std::uint8_t generation, ConnectionPolicy const& policy, Answers answers) {
    Robot robot(generation % 2 != 0, policy);
    test::Script script = operation.script;
    script.insert(script.end(), operation.traits.afterFailure.begin(), operation.traits.afterFailure.end());
    robot.machine.Play(
        script, 0, [&](test::Bytes const& good) { return Take(answers, good); }, true);
    Outcome const outcome = operation.call(robot);
    Require(!outcome.threw || (operation.traits.mayThrow && !policy.Enforces(Rule::NoExceptions)),
            "only a time that can't be parsed throws, and only as designed");
    Require(outcome.threw || !outcome.status.Message.empty(), "a status has a text");
    bool const leavesNothing = operation.script.size() == 1 && !operation.traits.decodesRefusals && generation % 2 == 0;
    Require(!leavesNothing || outcome.threw || outcome.status.StatusCode == 0 ||
                outcome.image == operation.imageAfterFailure(0),
            "a failed operation leaves what its header says");
    RequireUsable(robot);
}

CircularMotion MotionOf(Input& input) {
    CircularMotion motion;
    motion.controlGroup = ControlGroupId::R1;
    motion.moveType = static_cast<MoveInterpolationType>(input.Take<std::uint8_t>() % 4);
    motion.speed = input.Take<std::uint8_t>() + 1.0;
    motion.accelerationRatio = input.Take<std::uint8_t>();
    motion.position.coordinateType = static_cast<CoordinateType>(input.Take<std::uint8_t>());
    motion.position.toolNumber = input.Take<std::int16_t>();
    motion.position.axes.fill(input.Take<double>());
    return motion;
}

/// The work of the monitor for each point, on this thread.
void SendTargets(std::uint8_t generation, Input& input) {
    auto const motion = MotionOf(input);
    FuzzedConnection connection(generation);
    connection.SetAnswers(TakeAnswers(input));
    auto& manager = dynamic_cast<MotionManager&>(*connection.robot.MotionManager);
    StatusInfo status;
    for (std::uint8_t slot = 0; slot < MotionSlots; ++slot) {
        MotionStep step;
        if (step.SetTarget(motion, static_cast<TargetControlGroup>(slot), status)) {
            Require(!manager.SendTarget(step).Message.empty(), "a status has a text");
        }
    }
    connection.RequireUsable();
}

/// The monitor sends two points, or fails and raises an alarm. Closing the connection waits for it.
void FeedTrajectory(std::uint8_t generation, Input& input) {
    auto const motion = MotionOf(input);
    FuzzedConnection connection(generation);
    connection.SetAnswers(TakeAnswers(input));
    for (int point = 0; point < 2; ++point) {
        connection.robot.MotionManager->AddPointToTrajectory(motion, motion, {}, {});
    }
    connection.robot.MotionManager->MotionStart();
}

void OpenConnection(std::uint8_t generation, Input& input) {
    FuzzedConnection connection(generation, TakeAnswers(input));
    if (connection.status.StatusCode == 0) {
        connection.RequireUsable();
    }
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static constexpr void (*others[])(std::uint8_t, Input&) = {OpenConnection, SendTargets, FeedTrajectory};
    static test::Operations const table = [] {
        test::Operations operations = test::AllOperations();
        std::erase_if(operations, [](Operation const& each) { // another fuzzer moves files of this computer
            return each.name.ends_with("FromPath") || each.name.ends_with("ToFile");
        });
        return operations;
    }();
    Input input(data, size);
    auto const number = input.Take<std::uint16_t>();
    auto const generation = input.Take<std::uint8_t>();
    auto const& policy = policies[input.Take<std::uint8_t>() % std::size(policies)];
    if (number < table.size()) {
        Run(table[number], generation, policy, TakeAnswers(input));
    } else {
        others[number % std::size(others)](generation, input);
    }
    return 0;
}

} // namespace harvlink::fuzz
