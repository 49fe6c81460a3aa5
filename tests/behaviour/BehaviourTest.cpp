#include <regex>

#include <unistd.h>

#include "behaviour/FaultCase.h"
#include "support/ScratchFolder.h"

// Tests that run for every operation of the library over every way to connect: each exchange of each operation gets each
// kind of fault. Strict connections end as designed ones do, unless the table of differences says otherwise.

namespace harvlink::test {

void PrintTo(Outcome const& outcome, std::ostream* stream) {
    *stream << outcome.status << (outcome.threw ? " thrown" : "") << " after " << outcome.exchanges << " exchanges, "
            << outcome.image;
}

namespace {

constexpr int active = 8288; ///< an alarm is active: no subsystem changes this code
constexpr int creationFailed = 0x10007;
constexpr std::size_t longReply = 128; ///< longer replies are cut at fewer places, to save time

class Behaviour : public testing::TestWithParam<ConnectionWay> {
protected:
    /// In a long row of exchanges with the same command, only the first, the second and the last are tested.
    static bool IsInTheMiddle(Script const& script, std::size_t step) {
        unsigned const command = script[step].command;
        return step > 1 && script[step - 2].command == command && step + 1 < script.size() &&
               script[step + 1].command == command;
    }

    /// In memory if possible: the tests write files many times, and a disk would slow them down.
    static ScratchFolder MakeFolder() {
        if (::access("/dev/shm", W_OK) == 0) {
            ::setenv("TMPDIR", "/dev/shm", 0);
        }
        return {};
    }

    /// Runs `check` for each exchange of each operation, and checks that the next operation works.
    void ForEachExchange(std::function<void(Case const&)> const& check) {
        for (Operation const& operation : table) {
            SCOPED_TRACE(operation.name + (operation.isPlain ? " by its plain name" : ""));
            Robot robot(false, GetParam().policy);
            Robot designed;
            robot.machine.Play(operation.script);
            Outcome const good = operation.call(robot);
            for (std::size_t step = 0; step < operation.script.size(); ++step) {
                if (operation.script[step].isAnswered && !IsInTheMiddle(operation.script, step)) {
                    SCOPED_TRACE(testing::Message() << "exchange " << step);
                    Case const example{operation, GetParam(), robot, designed, step, good};
                    check(example);
                    example.ExpectNextWorks();
                }
            }
        }
    }

    ScratchFolder folder = MakeFolder();
    Operations table = AllOperations();
};

TEST_P(Behaviour, Success) {
    std::string imageOfClass;
    Bytes sentByClass;
    for (Operation const& operation : table) {
        SCOPED_TRACE(operation.name + (operation.isPlain ? " by its plain name" : ""));
        Robot designed;
        Robot robot(false, GetParam().policy);
        for (Robot* const each : {&designed, &robot}) {
            each->machine.Play(operation.script);
        }
        Outcome const good = operation.call(robot);
        EXPECT_EQ(good, operation.call(designed));
        EXPECT_EQ(robot.machine.Sent(), designed.machine.Sent());
        EXPECT_EQ(good.status.StatusCode, 0);
        EXPECT_EQ(good.status.Message, operation.traits.successMessage);
        EXPECT_EQ(good.exchanges, operation.script.size());
        EXPECT_EQ(good.image != operation.imageAfterFailure(0), operation.hasOutput);
        if (operation.isPlain) {
            EXPECT_EQ(good.image, imageOfClass) << "class and plain function must have the same output";
            EXPECT_EQ(robot.machine.Sent(), sentByClass) << "and pass on the same arguments";
        }
        sentByClass = robot.machine.Sent();
        imageOfClass = good.cutImage;

        Robot older(true, GetParam().policy);
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

TEST_P(Behaviour, RefusalAndRefusalWithPayload) {
    ForEachExchange([](Case const& example) {
        example.ExpectRefusal(0x1f, 2, active, "There is an active Error or Alarm.");
        for (int const code : {40961, 65535, 65534}) { // codes that some subsystems change
            example.ExpectRefusal(0x1f, 2, static_cast<std::uint16_t>(code), "");
        }
    });
}

TEST_P(Behaviour, UnknownStatus) {
    std::string const unknown = "Could not find an error description with that code.";
    ForEachExchange([&](Case const& example) {
        example.ExpectRefusal(0x77, 0, 0, unknown);
        example.ExpectRefusal(0xff, 255, 0x7777, unknown);
    });
}

TEST_P(Behaviour, SilenceFromAnExchangeOn) {
    ForEachExchange([](Case const& example) {
        Script const& script = example.operation.script;
        std::size_t failed = example.step;
        while (failed < script.size() && (example.IsLossIgnored(failed) || !script[failed].isAnswered)) {
            ++failed;
        }
        Outcome const outcome = example.WithFault(Silence, true);
        if (failed == script.size()) {
            EXPECT_EQ(outcome, example.good);
        } else {
            example.ExpectTimeout(outcome, failed);
        }
    });
}

TEST_P(Behaviour, SilenceAtIdZeroIsAnEmptySuccess) {
    ForEachExchange([](Case const& example) {
        if (example.step != 0) {
            return; // in a transfer, the following exchanges keep the id of the first
        }
        auto const& [unused, rule, code, message] = DifferenceAt(Edge::SilenceAtIdZero);
        Outcome const empty = example.AsDesigned([](Bytes const& good) { return Datagrams{WithoutPayload(good)}; });
        example.GoToId(0, 0);
        std::uint64_t const before = example.robot.CountOf(rule);
        Script script = example.operation.script;
        Script const& afterFailure = example.operation.traits.afterFailure;
        if (example.way.IsStrict()) {
            script.insert(script.end(), afterFailure.begin(), afterFailure.end());
        }
        example.robot.machine.Play(script, 0, Silence);
        Outcome const outcome = example.operation.call(example.robot);
        if (!example.way.IsStrict() || example.IsLossIgnored(0)) {
            EXPECT_EQ(outcome, empty);
        } else {
            example.ExpectFailure(outcome, 0, code, message);
        }
        EXPECT_EQ(example.robot.CountOf(rule) > before, example.way.policy.Watches(rule));
    });
}

TEST_P(Behaviour, ALostAnswerIsAskedForAgainOnlyByAStrictRead) {
    ForEachExchange([](Case const& example) {
        std::size_t asked = 0;
        auto const losesFirst = [&](Bytes const& good) { return asked++ == 0 ? Datagrams{} : Datagrams{good}; };
        if (example.IsRead()) {
            example.ExpectEdge(Edge::LostAnswerToRead, losesFirst, example.AsDesigned(Silence));
            EXPECT_EQ(asked, example.way.IsStrict() ? 2U : 1U);
        } else {
            Outcome const outcome = example.WithFault(losesFirst);
            EXPECT_EQ(outcome, example.WithFault(Silence));
            EXPECT_EQ(asked, 1U);
        }
    });
}

TEST_P(Behaviour, StaleReplies) {
    ForEachExchange([](Case const& example) {
        EXPECT_EQ(example.WithFault([](Bytes const& good) { return Datagrams{Stale(good), good}; }), example.good);
        EXPECT_EQ(example.WithFault([](Bytes const& good) {
            return Datagrams{Stale(good), Stale(good), good};
        }),
                  example.good);
        // As designed, the stale replies use up all periods. The good reply is then stale in the next exchange.
        auto const late = [](Bytes const& good) { return Datagrams{Stale(good), Stale(good), Stale(good), good}; };
        Outcome const asDesigned = example.AsDesigned(late);
        if (example.IsIgnored()) {
            EXPECT_EQ(asDesigned, example.AsDesigned(Silence));
        } else {
            example.ExpectTimeout(asDesigned, example.step);
        }
        example.ExpectEdge(Edge::StaleRepliesInEachPeriod, late, asDesigned);
    });
}

TEST_P(Behaviour, AnswersToSomethingElse) {
    struct {
        char const* what;
        std::size_t offset;
        std::uint8_t value;
    } const differences[] = {{"magic", 0, 'X'},
                             {"header size", 4, 33},
                             {"payload size", 7, 0x7f},
                             {"division", 9, 7},
                             {"service", 24, 0xfe}};
    ForEachExchange([&](Case const& example) {
        for (auto const& [what, offset, value] : differences) {
            SCOPED_TRACE(what);
            auto const change = [offset = offset, value = value](Bytes const& good) {
                Bytes other = good;
                other[offset] = value;
                return Datagrams{other};
            };
            Outcome const asDesigned = example.AsDesigned(change);
            if (!example.IsFile()) { // a file takes as much as the payload size says
                EXPECT_EQ(asDesigned, example.good);
            }
            example.ExpectEdge(Edge::AnswerToSomethingElse, change, asDesigned);
        }
    });
}

/// As many lengths of header and payload as a sanitizer gets through in seconds.
std::size_t StepAt(std::size_t length, std::size_t full) {
    if (length < replyHeader) {
        return length < idOffset ? 4 : 2;
    }
    return full > longReply ? 61 : 5;
}

/// A datagram whose header does not name what there is of it.
TEST_P(Behaviour, CutReplyCountsAsFilledWithZeros) {
    ForEachExchange([](Case const& example) {
        std::size_t const full = replyHeader + example.operation.script[example.step].payload.size();
        for (std::size_t length = 0; length < full; length += StepAt(length, full)) {
            SCOPED_TRACE(testing::Message() << "cut to " << length << " bytes");
            auto const cut = [=](Bytes const& good) { return Datagrams{Cut(good, length)}; };
            if (length <= idOffset) {
                EXPECT_EQ(example.WithFault(cut), example.WithFault(Silence));
                continue;
            }
            Outcome const isZeroed =
                example.AsDesigned([=](Bytes const& good) { return Datagrams{Cut(Cut(good, length), good.size())}; });
            EXPECT_TRUE(!isZeroed.threw || example.operation.traits.mayThrow);
            example.ExpectEdge(Edge::AnswerToSomethingElse, cut, isZeroed);
        }
    });
}

/// A datagram that is whole, with less in it than its record has.
TEST_P(Behaviour, ShortRecordCountsAsFilledWithZeros) {
    ForEachExchange([](Case const& example) {
        std::size_t const full = replyHeader + example.operation.script[example.step].payload.size();
        for (std::size_t length = replyHeader; length < full; length += StepAt(length, full)) {
            SCOPED_TRACE(testing::Message() << "cut to " << length << " bytes");
            auto const cut = [=](Bytes const& good) { return WithPayloadSize(Cut(good, length)); };
            auto const isShort = [=](Bytes const& good) { return Datagrams{cut(good)}; };
            Outcome const isZeroed =
                example.AsDesigned([=](Bytes const& good) { return Datagrams{Cut(cut(good), good.size())}; });
            if (example.IsFile() || example.operation.traits.mayBeShort) {
                EXPECT_EQ(example.WithFault(isShort), isZeroed);
            } else {
                example.ExpectEdge(Edge::ShortRecord, isShort, isZeroed);
            }
        }
    });
}

TEST_P(Behaviour, OverlongReplyIsCut) {
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
TEST(BehaviourTable, HoldsEveryOperation) {
    Operations const table = AllOperations();
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

INSTANTIATE_TEST_SUITE_P(Ways, Behaviour, testing::ValuesIn(ConnectionWays()),
                         [](auto const& test) { return std::string(test.param.name); });

class BehaviourOfOpening : public testing::TestWithParam<ConnectionWay> {
protected:
    /// The codes that opening may have if an answer is cut, or missing from this exchange on (length 0). As designed, only
    /// the probe and parameter RS022 decide whether a connection opens. All answers after them may be missing. A strict
    /// connection needs them all.
    static std::set<int> Expected(Script const& script, std::size_t step, std::size_t length) {
        bool const isWhole = !script[step].isAnswered || length == replyHeader + script[step].payload.size();
        if (GetParam().IsStrict()) {
            return {length != 0 && isWhole ? 0 : timeoutCode};
        }
        if (length != 0 || !script[step].isAnswered) {
            return {0, timeoutCode, creationFailed};
        }
        return {step == 0 ? timeoutCode : step == 1 ? creationFailed : 0};
    }
};

TEST_P(BehaviourOfOpening, SilenceAndShortReplies) {
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
                QuorvanControllerImplementation controller(machine.MakeTransport(), 1, 0, false, status,
                                                           GetParam().policy);
                EXPECT_TRUE(Expected(script, step, length).contains(status.StatusCode)) << status;
                if (status.StatusCode == 0) {
                    ControllerStateData state;
                    machine.Play({{114, Bytes(8)}});
                    EXPECT_EQ(controller.Status->ReadState(state).StatusCode, 0);
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Ways, BehaviourOfOpening, testing::ValuesIn(ConnectionWays()),
                         [](auto const& test) { return std::string(test.param.name); });

} // namespace
} // namespace harvlink::test
