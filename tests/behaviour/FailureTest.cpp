#include "behaviour/Failure.h"

#include <atomic>
#include <bit>
#include <set>

#include "behaviour/Operation.h"
#include "harvlink/harvlink.h"
#include "simulator/network/Server.h"
#include "support/LoopbackAddress.h"
#include "support/ScratchFolder.h"

// Memory and system calls that fail, one after the other, in everything that a strict connection does.

namespace harvlink::test {
namespace {

constexpr int outOfMemory = 0x50006;
constexpr std::size_t most = 5000;

constexpr ConnectionPolicy guarded{.enforced = NoRules.With(Rule::NoExceptions).With(Rule::SilenceIsTimeout)};

/// A way in which the first exchange of an operation goes.
using Way = Datagrams (*)(Bytes const& good);

Datagrams Good(Bytes const& good) {
    return {good};
}
Datagrams Refused(Bytes const& good) {
    Bytes refusal = good;
    SetStatus(refusal, 0x1f, 2, 8288);
    return {refusal};
}
Datagrams Lost(Bytes const&) {
    return {};
}

Outcome Run(Operation const& operation, Way way, Failure* failure) {
    Robot robot(false, guarded);
    robot.failure = failure;
    Script script = operation.script;
    script.insert(script.end(), operation.traits.afterFailure.begin(), operation.traits.afterFailure.end());
    robot.machine.Play(std::move(script), 0, way, way == Lost);
    return operation.call(robot);
}

/// What the outputs hold after a failure, by all the exchanges that it can have come in.
std::set<std::string> ImagesAfterFailure(Operation const& operation) {
    std::set<std::string> images;
    for (std::size_t step = 0; step <= operation.script.size(); ++step) {
        images.insert(operation.imageAfterFailure(step));
    }
    if (operation.name == "file_interface_SaveFromControllerToFile") {
        images.insert(Image(std::string(), false)); // opening the file has emptied it
    }
    return images;
}

void FailEachAllocation(Operation const& operation, Way way) {
    Outcome const whole = Run(operation, way, nullptr);
    auto const images = ImagesAfterFailure(operation);
    for (std::size_t number = 1; number < most; ++number) {
        SCOPED_TRACE(testing::Message() << "allocation " << number);
        Failure failure(Resource::Memory, number);
        Outcome const outcome = Run(operation, way, &failure);
        ASSERT_FALSE(outcome.threw);
        if (!failure.hasHappened) {
            EXPECT_EQ(outcome, whole);
            return;
        }
        if (outcome.status.StatusCode == outOfMemory && !operation.isPlain) {
            EXPECT_TRUE(images.contains(outcome.image)) << outcome.image;
            EXPECT_EQ(outcome.status.Message, "Out of memory");
        } else if (outcome.status.StatusCode == 0) { // a text of it alone could not be had
            EXPECT_EQ(outcome.image, whole.image);
        }
    }
    ADD_FAILURE() << "has no end";
}

TEST(Failures, OfMemoryInEveryOperation) {
    if (!Failure::CanFail(Resource::Memory)) {
        GTEST_SKIP();
    }
    ScratchFolder const folder;
    for (Operation const& operation : AllOperations()) {
        for (Way const way : {Good, Refused, Lost}) {
            SCOPED_TRACE(operation.name + (operation.isPlain ? ", plain" : "") +
                         (way == Good   ? ""
                          : way == Lost ? ", lost"
                                        : ", refused"));
            FailEachAllocation(operation, way);
        }
    }
}

/// A point that is queued, sent and waited for, in a controller that takes or refuses it.
struct QueuedPoint {
    explicit QueuedPoint(std::uint16_t answerToTarget) : answer(answerToTarget) {
        robot.machine.AnswerAll([this](unsigned command) -> std::optional<std::uint16_t> {
            alarms += command == alarm ? 1U : 0U;
            if (ofMonitor != nullptr && command != start) {
                Failure::Arm(std::exchange(ofMonitor, nullptr));
            }
            return command == target ? answer : std::uint16_t{0};
        });
        EXPECT_EQ(motion.MotionStart().StatusCode, 0);
        point.position.toolNumber = -1;
    }

    static constexpr std::uint16_t taken = 0, refused = 65534;
    static constexpr unsigned start = 839, target = 842, alarm = 916, waitMilliseconds = 20'000;
    std::uint16_t answer;
    std::atomic<unsigned> alarms = 0;
    Failure* ofMonitor = nullptr; ///< armed by the first exchange of the thread that sends
    Robot robot{false, {.enforced = StrictRules}};
    MotionManagerInterface& motion = *robot.controller->MotionManager;
    Motion point{.controlGroup = ControlGroupId::R1, .speed = 50.0, .moveType = MoveInterpolationType::Joint};
    std::uint64_t number = 0;
};

TEST(Failures, OfMemoryOnTheThreadThatSendsPoints) {
    if (!Failure::CanFail(Resource::Memory)) {
        GTEST_SKIP();
    }
    ScratchFolder const folder;
    for (std::uint16_t const answer : {QueuedPoint::taken, QueuedPoint::refused}) {
        for (std::size_t number = 1;; ++number) {
            ASSERT_LT(number, most);
            SCOPED_TRACE(testing::Message() << "answer " << answer << ", allocation " << number);
            Failure failure(Resource::Memory, number);
            QueuedPoint step(answer);
            step.ofMonitor = &failure;
            EXPECT_EQ(step.motion.AddPointToTrajectory(step.number, step.point).StatusCode, 0);
            StatusInfo const status = step.motion.WaitUntilSent(step.number, QueuedPoint::waitMilliseconds);
            TrajectoryState state;
            EXPECT_EQ(step.motion.GetTrajectoryState(state).StatusCode, 0);
            EXPECT_EQ(state.sent, status.StatusCode == 0 ? 1U : 0U) << status;
            EXPECT_EQ(state.sent + state.refused, 1U);
            EXPECT_EQ(state.refused, step.alarms) << "whatever memory there is, the pendant shows it";
            step.robot.controller.reset(); // ends the thread
            if (!failure.hasHappened) {
                EXPECT_EQ(status.StatusCode == 0, answer == QueuedPoint::taken) << status;
                EXPECT_TRUE(number > 1 || answer == QueuedPoint::taken) << "a failure takes memory";
                break;
            }
        }
    }
}

TEST(Failures, OfMemoryInTheOperationsOnSteps) {
    if (!Failure::CanFail(Resource::Memory)) {
        GTEST_SKIP();
    }
    ScratchFolder const folder;
    using Call = std::function<StatusInfo(QueuedPoint&)>;
    auto const plain = [](QueuedPoint& p) { return std::bit_cast<::Motion>(p.point); };
    Call const calls[] = {
        [](QueuedPoint& p) { return p.motion.AddPointToTrajectory(p.number, p.point); },
        [](QueuedPoint& p) { return p.motion.WaitForTarget(p.number, 1, 1.0); },
        [](QueuedPoint& p) { return p.motion.WaitUntilSent(p.number, QueuedPoint::waitMilliseconds); },
        [](QueuedPoint& p) {
            TrajectoryState state;
            return p.motion.GetTrajectoryState(state);
        },
        [&](QueuedPoint& p) {
            auto const point = plain(p);
            return Take(harvlink_motion_add(&p.robot.cell, &p.number, &point, nullptr, nullptr, nullptr));
        },
        [](QueuedPoint& p) { return Take(harvlink_motion_wait_for_target(&p.robot.cell, p.number, 1, 1.0)); },
        [](QueuedPoint& p) {
            return Take(harvlink_motion_wait_until_sent(&p.robot.cell, p.number, QueuedPoint::waitMilliseconds));
        },
        [](QueuedPoint& p) {
            HarvlinkTrajectoryState state{};
            state.size = sizeof(state);
            IStatusInfo const status = harvlink_motion_get_state(&p.robot.cell, &state);
            std::free(state.failureMessage);
            return Take(status);
        },
    };
    for (std::uint16_t const answer : {QueuedPoint::taken, QueuedPoint::refused}) {
        for (Call const& call : calls) {
            for (std::size_t number = 1;; ++number) {
                ASSERT_LT(number, most);
                SCOPED_TRACE(testing::Message() << "call " << &call - calls << ", allocation " << number);
                QueuedPoint step(answer);
                EXPECT_EQ(step.motion.AddPointToTrajectory(step.number, step.point).StatusCode, 0);
                step.motion.WaitUntilSent(step.number, QueuedPoint::waitMilliseconds);
                Failure failure(Resource::Memory, number);
                Failure::Arm(&failure);
                EXPECT_NO_THROW((void)call(step));
                Failure::Arm(nullptr);
                if (!failure.hasHappened) {
                    break;
                }
            }
        }
    }
}

struct OperatingTime {
    explicit OperatingTime(ConnectionPolicy const& policy) : robot(false, policy) {
        robot.machine.Play({{136, Text("2026/11/21 10:00") + Text("no time", 12)}});
    }
    StatusInfo Read() {
        return robot.controller->Status->ReadOperatingTimes(ControlGroupId::R1, TimeType::ControlPower, time,
                                                            ApplicationNumber::None);
    }

    Robot robot;
    TimeData time;
};

TEST(Failures, AreExceptionsAsDesigned) {
    ConnectionPolicy const audit{.audited = StrictRules};
    for (ConnectionPolicy const& policy : {ConnectionPolicy{}, audit}) {
        OperatingTime designed(policy);
        EXPECT_THROW((void)designed.Read(), std::invalid_argument);
        EXPECT_EQ(designed.robot.CountOf(Rule::NoExceptions), policy.Watches(Rule::NoExceptions) ? 1U : 0U);
        EXPECT_THROW((void)job_interface_set_active_job(&designed.robot.cell, nullptr, 0), std::logic_error);
        if (Failure::CanFail(Resource::Memory)) {
            designed.robot.machine.Play({{114}}, 0, Lost);
            Failure failure(Resource::Memory, 1);
            Failure::Scope const scope(&failure);
            ControllerStateData state;
            EXPECT_THROW((void)designed.robot.controller->Status->ReadState(state), std::bad_alloc);
        }
    }
    OperatingTime strict(guarded);
    StatusInfo const status = strict.Read();
    EXPECT_EQ(status.StatusCode, 0x50008);
    EXPECT_TRUE(status.Message.ends_with("(rule NoExceptions)")) << status;
    EXPECT_EQ(strict.robot.CountOf(Rule::NoExceptions), 1U);
    EXPECT_EQ(strict.time.startTimeEpoch, 0);
    EXPECT_EQ(Take(job_interface_set_active_job(&strict.robot.cell, nullptr, 0)).StatusCode, 0x50007);
}

TEST(Failures, OfATextThatAPlainFunctionReturns) {
    Robot robot(false, guarded);
    for (bool const isStrict : {false, true}) {
        robot.cell.isStrict = isStrict;
        robot.machine.Play({{137, Text("YA1.00", 24) + Text("MODEL", 24)}});
        ISystemInfoData data;
        IStatusInfo status;
        Failure failure(Resource::Memory,
                        Failure::CanFail(Resource::Memory) ? 3 : 2); // behind both texts of the method
        {
            Failure::Scope const scope(&failure);
            status = controller_state_interface_read_system_information(&robot.cell, 11, &data);
        }
        EXPECT_EQ(data.softwareVersion, nullptr);
        EXPECT_EQ(Take(status).StatusCode, isStrict ? outOfMemory : 0);
        EXPECT_EQ(Take(data).modelName, "MODEL");
    }
}

/// A virtual controller, and what is done with it.
struct Session {
    Session() {
        for (int attempt = 0; attempt < 1000; ++attempt) {
            server = std::make_unique<simulator::Server>();
            address = NextLoopbackAddress();
            server->Add(address);
            if (server->Start()) {
                return;
            }
        }
        ADD_FAILURE() << "no address is free";
    }

    ConnectOptions Options() const { return {.address = address, .timeout = 40, .retries = 4, .access = Access::Full}; }

    std::unique_ptr<simulator::Server> server;
    std::string address;
};

/// Runs a call until it needs the resource less than `number` times. It gives a code. The time-out is short, so that the
/// whole run without a failure gets some attempts on a busy machine.
void FailEach(Resource resource, auto const& call) {
    constexpr int attempts = 20;
    for (std::size_t number = 1, missed = 0; number < most && missed < attempts;) {
        Failure failure(resource, number);
        int const code = call(failure);
        if (failure.hasHappened) {
            ++number;
        } else if (code == 0) {
            return;
        } else {
            ++missed;
        }
    }
    ADD_FAILURE() << "never succeeds";
}

int ConnectFromClass(Session const& session, Failure& failure) {
    ConnectOptions const options = session.Options();
    StatusInfo status;
    Connection connection;
    {
        Failure::Scope const scope(&failure);
        connection = Connect(options, status);
    }
    EXPECT_EQ(connection == nullptr, status.StatusCode != 0) << status;
    return status.StatusCode;
}

int ConnectFromPlain(Session const& session, Failure& failure) {
    HarvlinkConnectOptions options;
    harvlink_connect_options_init(&options);
    options.address = session.address.c_str();
    options.timeout = session.Options().timeout;
    options.retries = session.Options().retries;
    options.access = HARVLINK_FULL;
    IStatusInfo status;
    ControllerHandle handle = nullptr;
    {
        Failure::Scope const scope(&failure);
        handle = harvlink_connect(&options, &status);
    }
    EXPECT_EQ(handle->controller == nullptr, status.StatusCode != 0);
    close_connection(handle);
    std::free(status.Message);
    return status.StatusCode;
}

TEST(Failures, OfMemoryWhileConnecting) {
    if (!Failure::CanFail(Resource::Memory)) {
        GTEST_SKIP();
    }
    Session const session;
    FailEach(Resource::Memory, [&](Failure& failure) { return ConnectFromClass(session, failure); });
    FailEach(Resource::Memory, [&](Failure& failure) { return ConnectFromPlain(session, failure); });
}

TEST(Failures, OfSystemCallsWhileConnecting) {
    Session const session;
    FailEach(Resource::SystemCall, [&](Failure& failure) { return ConnectFromClass(session, failure); });
}

TEST(Failures, OfMemoryDoNotTouchAnExchangeThatSucceeds) {
    if (!Failure::CanFail(Resource::Memory)) {
        GTEST_SKIP();
    }
    Session const session;
    for (Rules const rules : {NoRules, StrictRules}) {
        ConnectOptions options = session.Options();
        options.timeout = 2000;
        options.rules = rules;
        StatusInfo status;
        Connection const robot = Connect(options, status);
        ASSERT_TRUE(robot) << status;
        ControllerStateData state;
        Failure failure(Resource::Memory, 1);
        {
            Failure::Scope const scope(&failure);
            status = robot->Status->ReadState(state);
        }
        EXPECT_EQ(status.StatusCode, 0) << status;
        EXPECT_FALSE(failure.hasHappened) << "it allocates nothing";
    }
}

TEST(Failures, OfSystemCallsInOperations) {
    ScratchFolder const folder;
    WriteFile("A.DAT", std::string(1'200, 'x'));
    Session const session;
    StatusInfo status;
    Connection const robot = Connect(session.Options(), status);
    ASSERT_TRUE(robot) << status;
    EXPECT_EQ(robot->ControlCommands->SetServos(SignalStatus::On).StatusCode, 0);
    ControllerStateData state;
    using Call = std::function<StatusInfo()>;
    Call const calls[] = {
        [&] { return robot->Status->ReadState(state); },
        [&] { return robot->IO->WriteBit(27010, true); },
        [&] { return robot->Files->LoadToControllerFromPath("A.DAT"); },
        [&] { return robot->Files->SaveFromControllerToFile("A.DAT", "B.DAT", true); },
        [&] { return robot->MotionManager->MotionStart(); },
    };
    for (Call const& call : calls) {
        SCOPED_TRACE(&call - calls);
        FailEach(Resource::SystemCall, [&](Failure& failure) {
            Failure::Scope const scope(&failure);
            return call().StatusCode;
        });
    }
    EXPECT_EQ(ContentOf("B.DAT"), ContentOf("A.DAT"));
}

} // namespace
} // namespace harvlink::test
