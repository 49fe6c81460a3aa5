#include <numeric>
#include <regex>

#include "behaviour/Operation.h"
#include "support/ScratchFolder.h"

// Tests that run for every operation of the library: each exchange of each operation gets each kind of fault.

namespace harvlink::test {

Bytes Pattern(std::size_t size) {
    Bytes bytes(size);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{1});
    return bytes;
}

Table AllOperations() {
    Table table;
    AddStateOperations(table);
    AddVariableOperations(table);
    AddSignalOperations(table);
    AddSequenceOperations(table);
    return table;
}

void PrintTo(Outcome const& outcome, std::ostream* stream) {
    *stream << outcome.status << (outcome.threw ? " thrown" : "") << " after " << outcome.exchanges << " exchanges, "
            << outcome.image;
}

namespace {

constexpr int active = 8288; ///< an alarm is active: no subsystem changes this code
constexpr int timeout = 0x30006;
constexpr int creationFailed = 0x10007;
constexpr std::size_t replyHeader = 32;
constexpr std::size_t longReply = 128; ///< longer replies are cut at every seventh byte only, to save time

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
Datagrams Silence(Bytes const&) {
    return {};
}

/// One exchange of one operation, which gets a fault.
struct Case {
    Operation const& operation;
    Robot& robot;
    std::size_t step;
    Outcome good;

    bool IsIgnored() const { return operation.traits.ignored.contains(step); }

    /// Runs the operation with the fault in this exchange, or in this one and all that follow.
    Outcome WithFault(ReplyFault fault, bool affectsAllFollowing = false) const {
        GoToId(1, 100);
        Script script = operation.script;
        script.insert(script.end(), operation.traits.afterFailure.begin(), operation.traits.afterFailure.end());
        robot.machine.Play(std::move(script), step, std::move(fault), affectsAllFollowing);
        return operation.call(robot);
    }
    Outcome With(Bytes (*change)(Bytes)) const {
        return WithFault([=](Bytes const& reply) { return Datagrams{change(reply)}; });
    }

    void ExpectFailure(Outcome const& outcome, std::size_t failed, int code, std::string const& message) const {
        Traits const& traits = operation.traits;
        auto const own = traits.codes.find(code);
        EXPECT_EQ(outcome.status.StatusCode, own == traits.codes.end() ? code : own->second);
        if (!message.empty()) {
            EXPECT_EQ(outcome.status.Message, traits.failureMessage.empty() ? message : traits.failureMessage);
        }
        EXPECT_EQ(outcome.image, operation.imageAfterFailure(failed));
        EXPECT_EQ(outcome.exchanges, failed + 1 + traits.afterFailure.size());
    }

    /// Checks the effect of a refusal, with and without a payload.
    void ExpectRefusal(std::uint8_t status, std::uint8_t size, std::uint16_t added, std::string const& message) const {
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

    void ExpectNextWorks() const {
        robot.machine.Play(operation.script);
        EXPECT_EQ(operation.call(robot), good) << "the next operation";
        EXPECT_FALSE(robot.machine.HasPending());
        EXPECT_EQ(robot.machine.Period(), Robot::timeout * 1000L);
    }

    /// Reads the state until the next id is in this range. With id 0, silence counts as an empty success.
    void GoToId(std::size_t lowest, std::size_t highest) const {
        ControllerStateData ignored;
        while (robot.machine.NextId() < lowest || robot.machine.NextId() > highest) {
            robot.machine.Play({{114, Bytes(8)}});
            robot.controller->Status->ReadState(ignored);
        }
    }
};

class Behaviour : public testing::Test {
protected:
    /// In a long row of exchanges with the same command, only the first, the second and the last are tested.
    static bool IsInTheMiddle(Script const& script, std::size_t step) {
        unsigned const command = script[step].command;
        return step > 1 && script[step - 2].command == command && step + 1 < script.size() &&
               script[step + 1].command == command;
    }

    /// In memory if possible: the tests write files many times, and a disk would slow them down.
    static ScratchFolder MakeFolder() {
        if (std::filesystem::is_directory("/dev/shm")) {
            ::setenv("TMPDIR", "/dev/shm", 0);
        }
        return {};
    }

    /// Runs `check` for each exchange of each operation, and checks that the next operation works.
    void ForEachExchange(std::function<void(Case const&)> const& check) {
        for (Operation const& operation : table) {
            SCOPED_TRACE(operation.name + (operation.isPlain ? " by its plain name" : ""));
            Robot robot;
            robot.machine.Play(operation.script);
            Outcome const good = operation.call(robot);
            for (std::size_t step = 0; step < operation.script.size(); ++step) {
                if (operation.script[step].isAnswered && !IsInTheMiddle(operation.script, step)) {
                    SCOPED_TRACE(testing::Message() << "exchange " << step);
                    Case const example{operation, robot, step, good};
                    check(example);
                    example.ExpectNextWorks();
                }
            }
        }
    }

    ScratchFolder folder = MakeFolder();
    Table table = AllOperations();
};

TEST_F(Behaviour, Success) {
    std::string imageOfClass;
    for (Operation const& operation : table) {
        SCOPED_TRACE(operation.name + (operation.isPlain ? " by its plain name" : ""));
        Robot robot;
        robot.machine.Play(operation.script);
        Outcome const good = operation.call(robot);
        EXPECT_EQ(good.status.StatusCode, 0);
        EXPECT_EQ(good.status.Message, operation.traits.successMessage);
        EXPECT_EQ(good.exchanges, operation.script.size());
        EXPECT_EQ(good.image != operation.imageAfterFailure(0), operation.hasOutput);
        if (operation.isPlain) {
            EXPECT_EQ(good.image, imageOfClass) << "class and plain function must have the same output";
        }
        imageOfClass = good.cutImage;

        Robot older(true);
        older.machine.Play(operation.traits.statusOnOlder == 0 ? operation.script : Script{});
        Outcome const there = operation.call(older);
        if (operation.traits.statusOnOlder == 0) {
            EXPECT_EQ(there, good);
        } else {
            EXPECT_EQ(there.status.StatusCode, operation.traits.statusOnOlder);
            EXPECT_EQ(there.image, operation.imageOnOlder);
        }
    }
}

TEST_F(Behaviour, RefusalAndRefusalWithPayload) {
    ForEachExchange([](Case const& example) {
        example.ExpectRefusal(0x1f, 2, active, "There is an active Error or Alarm.");
        for (int const code : {40961, 65535, 65534}) { // codes that some subsystems change
            example.ExpectRefusal(0x1f, 2, static_cast<std::uint16_t>(code), "");
        }
    });
}

TEST_F(Behaviour, UnknownStatus) {
    std::string const unknown = "Could not find an error description with that code.";
    ForEachExchange([&](Case const& example) {
        example.ExpectRefusal(0x77, 0, 0, unknown);
        example.ExpectRefusal(0xff, 255, 0x7777, unknown);
    });
}

TEST_F(Behaviour, SilenceFromAnExchangeOn) {
    ForEachExchange([](Case const& example) {
        Script const& script = example.operation.script;
        std::size_t failed = example.step;
        while (failed < script.size() &&
               (example.operation.traits.ignored.contains(failed) || !script[failed].isAnswered)) {
            ++failed;
        }
        Outcome const outcome = example.WithFault(Silence, true);
        if (failed == script.size()) {
            EXPECT_EQ(outcome, example.good);
        } else {
            example.ExpectFailure(outcome, failed, timeout, "No response from controller after 2 retries.");
        }
    });
}

TEST_F(Behaviour, SilenceAtIdZeroIsAnEmptySuccess) {
    ForEachExchange([](Case const& example) {
        if (example.step != 0) {
            return; // in a transfer, the following exchanges keep the id of the first
        }
        Outcome const empty = example.With(WithoutPayload);
        example.GoToId(0, 0);
        example.robot.machine.Play(example.operation.script, 0, Silence);
        EXPECT_EQ(example.operation.call(example.robot), empty);
    });
}

TEST_F(Behaviour, StaleReplies) {
    ForEachExchange([](Case const& example) {
        EXPECT_EQ(example.WithFault([](Bytes const& good) { return Datagrams{Stale(good), good}; }), example.good);
        EXPECT_EQ(example.WithFault([](Bytes const& good) {
            return Datagrams{Stale(good), Stale(good), good};
        }),
                  example.good);
        // The stale replies use up all periods. The good reply is then stale in the next exchange.
        Outcome const late = example.WithFault([](Bytes const& good) {
            return Datagrams{Stale(good), Stale(good), Stale(good), good};
        });
        if (example.IsIgnored()) {
            EXPECT_EQ(late, example.WithFault(Silence));
        } else {
            example.ExpectFailure(late, example.step, timeout, "No response from controller after 2 retries.");
        }
    });
}

TEST_F(Behaviour, ShortReplyCountsAsFilledWithZeros) {
    ForEachExchange([](Case const& example) {
        std::size_t const full = replyHeader + example.operation.script[example.step].payload.size();
        bool const isLong = full > longReply;
        for (std::size_t length = 0; length < full; length += isLong && length >= replyHeader ? 7 : 1) {
            SCOPED_TRACE(testing::Message() << "cut to " << length << " bytes");
            bool const hasId = length > idOffset;
            for (bool const hasItsLength : {false, true}) {
                auto const cut = [=](Bytes const& good) {
                    return hasItsLength ? WithPayloadSize(Cut(good, length)) : Cut(good, length);
                };
                Outcome const isShort = example.WithFault([=](Bytes const& good) { return Datagrams{cut(good)}; });
                Outcome const isZeroed = example.WithFault(
                    [=](Bytes const& good) { return hasId ? Datagrams{Cut(cut(good), good.size())} : Datagrams{}; });
                EXPECT_EQ(isShort, isZeroed);
                EXPECT_TRUE(!isShort.threw || example.operation.traits.mayThrow);
                if (length < replyHeader || isLong) {
                    break;
                }
            }
        }
    });
}

TEST_F(Behaviour, OverlongReplyIsCut) {
    ForEachExchange([](Case const& example) {
        for (std::size_t const excess : {1U, 7U, 2000U, 65000U}) {
            SCOPED_TRACE(excess);
            EXPECT_EQ(example.WithFault(
                          [=](Bytes const& good) { return Datagrams{WithPayloadSize(good + Bytes(excess, 0x77))}; }),
                      example.good);
        }
    });
}

/// The header of an interface, and the pattern of the plain names of its operations.
struct InterfaceHeader {
    char const* header;
    std::regex plainName;
    std::size_t namesForEachMethod; ///< 8 for the variables, which are a template of eight kinds
    std::size_t furtherNames; ///< further plain names of methods with optional arguments
};

std::size_t Count(std::string const& text, std::regex const& pattern) {
    return static_cast<std::size_t>(
        std::distance(std::sregex_iterator(text.begin(), text.end(), pattern), std::sregex_iterator()));
}

/// Fails if a method or a plain name of the library is not in the table.
TEST_F(Behaviour, TableHoldsEveryOperation) {
    std::filesystem::path const root(HARVLINK_SOURCE_DIR);
    std::set<std::string> names;
    for (Operation const& operation : table) {
        names.insert(operation.name);
    }
    std::regex const withoutExchange("(open|close)_connection|harvlink_.*|(vector|frame)_math_.*|[A-Z].*");
    std::set<std::string> exported;
    std::istringstream list(ContentOf(root / "cmake/exported-symbols.txt"));
    for (std::string name; std::getline(list, name);) {
        if (!std::regex_match(name, withoutExchange)) {
            exported.insert(name);
        }
    }
    EXPECT_EQ(names, exported);

    InterfaceHeader const headers[] = {
        {"ControllerStateInterface.h", std::regex("controller_state_.*"), 1, 0},
        {"ControlGroupInterface.h", std::regex("control_group_interface_.*"), 1, 0},
        {"VariablesInterface.h", std::regex(".*_variable_interface_.*"), 8, 0},
        {"FaultInterface.h", std::regex("fault_interface_.*"), 1, 0},
        {"JobInterface.h", std::regex("job_interface_.*"), 1, 0},
        {"FileInterface.h", std::regex("file_interface_.*"), 1, 0},
        {"IOInterface.h", std::regex("io_interface_.*"), 1, 0},
        {"ControlCommandsInterface.h", std::regex("control_commands_interface_.*"), 1, 0},
        {"MotionManagerInterface.h", std::regex("motion_manager_.*"), 1, 3},
        {"KinematicsInterface.h", std::regex("kinematics_interface_.*"), 1, 0},
    };
    for (auto const& [header, plainName, namesForEachMethod, furtherNames] : headers) {
        std::string const text = ContentOf(root / "include/harvlink" / header);
        std::size_t const methods = Count(text, std::regex("\\) = 0;")) - Count(text, std::regex("~\\w+\\(\\) = 0;"));
        auto const isOfThis = [&form = plainName](std::string const& name) { return std::regex_match(name, form); };
        EXPECT_EQ(static_cast<std::size_t>(std::ranges::count_if(names, isOfThis)),
                  methods * namesForEachMethod + furtherNames)
            << header;
    }
}

/// Only the probe and parameter RS022 decide whether a connection opens. All answers after them may be missing.
TEST(BehaviourOfOpening, SilenceAndShortReplies) {
    for (bool const isOlder : {false, true}) {
        Script const script = StartUp(isOlder);
        for (std::size_t step = 0; step < script.size(); ++step) {
            for (std::size_t length = 0; length <= replyHeader + script[step].payload.size(); ++length) {
                SCOPED_TRACE(testing::Message() << "exchange " << step << " cut to " << length);
                bool const isSilent = length == 0; // from here on
                MemoryController machine;
                auto const shorten = [=](Bytes const& good) {
                    return isSilent ? Datagrams{} : Datagrams{Cut(good, length)};
                };
                machine.Play(script, step, shorten, isSilent);
                StatusInfo status;
                QuorvanControllerImplementation controller(machine.MakeTransport(), 1, 0, false, status);
                std::set<int> const expected = !isSilent || !script[step].isAnswered
                                                   ? std::set{0, timeout, creationFailed}
                                                   : std::set{step == 0   ? timeout
                                                              : step == 1 ? creationFailed
                                                                          : 0};
                EXPECT_TRUE(expected.contains(status.StatusCode)) << status;
                if (status.StatusCode == 0) {
                    ControllerStateData state;
                    machine.Play({{114, Bytes(8)}});
                    EXPECT_EQ(controller.Status->ReadState(state).StatusCode, 0);
                }
            }
        }
    }
}

} // namespace
} // namespace harvlink::test
