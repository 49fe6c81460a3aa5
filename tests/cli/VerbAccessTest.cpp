#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <optional>
#include <ostream>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>
#include <netinet/in.h>

#include "ToolTest.h"
#include "cli/output/Output.h"
#include "cli/program/RepeatedRead.h"
#include "cli/program/Session.h"
#include "cli/program/Writes.h"
#include "support/ScratchFolder.h"
#include "wire/MinimumAccess.h"

namespace harvlink::cli {
namespace {

constexpr unsigned RobotPort = 10040;
constexpr unsigned FilePort = 10041;

constexpr std::optional<Access> NoConnection = std::nullopt;

/// A verb with arguments, and the most that it sends; NoConnection: it opens no connection.
struct VerbCase {
    char const* verb;
    char const* arguments;
    std::optional<Access> access;
};

constexpr std::array Verbs = std::to_array<VerbCase>({
    {"info", "robot1 station1", Access::Observe},
    {"status", "", Access::Observe},
    {"times", "", Access::Observe},
    {"param", "S2C430 RS22", Access::Observe},
    {"position", "R1 --coordinate base", Access::Observe},
    {"axes", "R1", Access::Observe},
    {"torque", "R1", Access::Observe},
    {"position-error", "R1", Access::Observe},
    {"var get", "B1 I1 D1 R1 S1 P1 BP1 EX1", Access::Observe},
    {"var dump", "", Access::Observe},
    {"var set", "B1=1 I1=1 D1=1 R1=1 S1=a P1=pulse:0,0,0,0,0,0", Access::Operate},
    {"var load", "v.csv", Access::Operate},
    {"var load", "v.csv --dry-run", Access::Observe},
    {"io get", "general-output:1 10010", Access::Observe},
    {"io byte", "10010", Access::Observe},
    {"io byte", "10010 10020=1", Access::Operate},
    {"io word", "10010", Access::Observe},
    {"io word", "10010=1", Access::Operate},
    {"io watch", "10010 999999", Access::Observe}, // ends, as there is no such signal
    {"io set", "10010=on", Access::Operate},
    {"register get", "0..2", Access::Observe},
    {"register set", "1=2", Access::Operate},
    {"files list", "", Access::Observe},
    {"files get", "*.JBI", Access::Observe},
    {"files cat", "SYSTEM.SYS", Access::Observe},
    {"files put", "NEW.DAT", Access::Operate},
    {"files delete", "NONE", Access::Operate},
    {"alarms", "", Access::Observe},
    {"alarms", "--history 3", Access::Observe},
    {"alarms history", "", Access::Observe},
    {"alarms clear", "", Access::Operate},
    {"job status", "", Access::Observe},
    {"job stack", "", Access::Observe},
    {"job select", "NONE", Access::Operate},
    {"job start", "--yes", Access::Operate},
    {"job stop", "", Access::Operate},
    {"start", "--yes", Access::Operate},
    {"servo", "on --yes", Access::Operate},
    {"hold", "on", Access::Operate},
    {"hold", "off --yes", Access::Operate},
    {"cycle", "step", Access::Operate},
    {"pendant", "text", Access::Operate},
    {"convert", "R1 joint:0,0,0,0,-90,0 --to pulse", Access::Observe},
    {"convert", "R1 base:790,0,1050,180,0,0 --to joint", Access::Observe},
    {"progress", "R1", Access::Observe},
    {"move", "R1 --line --to base:790,0,1050,180,0,0 --speed 9 --yes", Access::Full},
    {"trajectory run", "points.csv --yes", Access::Full},
    {"trajectory check", "points.csv", NoConnection},
    {"motion start", "--yes", Access::Full},
    {"motion stop", "", Access::Operate},
    {"motion clear", "", Access::Operate},
    {"stop", "--keep-targets", Access::Operate},
    {"clear", "", Access::Operate},
    {"watch", "--once", Access::Observe},
    {"snapshot save", "shot", Access::Observe},
    {"snapshot diff", "shot live", Access::Observe},
    {"snapshot restore", "shot --dry-run", Access::Observe},
    {"var set", "B1=77", Access::Operate}, // so that there is something to restore
    {"snapshot restore", "shot --only variables --yes", Access::Operate},
    {"doctor", "--probes 20", Access::Observe},
    {"snapshot show", "shot", NoConnection},
    {"config", "", NoConnection},
    {"explain", "0x2060", NoConnection},
    {"completion", "bash", NoConnection},
    {"help", "status", NoConnection},
    {"record", "--for 300ms --out r.harvlink", Access::Observe},
    {"recording info", "none.harvlink", NoConnection},
    {"recording events", "none.harvlink", NoConnection},
    {"recording export", "none.harvlink", NoConnection},
    {"recording cut", "none.harvlink --out cut.harvlink", NoConnection},
    {"recording plot", "none.harvlink", NoConnection},
    // The last, as it does not wait for answers that take too long: what it asked may come when it has ended.
    {"complete-words", "JOB", Access::Observe},
});

void AddNames(CLI::App const& command, std::string const& prefix, std::set<std::string>& names) {
    for (CLI::App const* sub : command.get_subcommands([](CLI::App const*) { return true; })) {
        std::string const name = prefix + sub->get_name();
        bool const isVerb = sub->get_require_subcommand_min() == 0 ||
                            sub->get_subcommands([](CLI::App const*) { return true; }).empty();
        if (isVerb) {
            names.insert(name);
        }
        AddNames(*sub, name + " ", names);
    }
}

std::set<std::string> AllVerbs() {
    std::istringstream in;
    std::ostringstream out;
    Console console{in, out, out, false, false, false};
    Output output(console);
    Session session(output);
    CLI::App app;
    std::set<std::string> names;
    for (AddCommands const add : AllCommands()) {
        add(app, session);
    }
    AddNames(app, "", names);
    return names;
}

/// Notes all that a controller receives.
class VerbAccess : public testing::Test {
protected:
    void Serve() {
        host_ = test::NextLoopbackAddress();
        ::setenv("HARVLINK_HOST", host_.c_str(), 1);
        controller_ = &server_.Add(host_);
        // Before the answer leaves, so that all that a command has waited for is noted when it ends.
        server_.SetRecorder([this](sockaddr_in const&, sockaddr_in const& to, std::span<std::byte const> datagram) {
            unsigned const port = ntohs(to.sin_port);
            if ((port == RobotPort || port == FilePort) && datagram.size() >= HeaderSize) {
                Note(port, datagram);
            }
        });
        ASSERT_TRUE(server_.Start()) << server_.Error();
    }

    void Note(unsigned port, std::span<std::byte const> datagram) {
        CommonHeader header;
        SubHeaderForSending subHeader;
        std::memcpy(&header, datagram.data(), sizeof(header));
        std::memcpy(&subHeader, datagram.data() + sizeof(header), sizeof(subHeader));
        transfersBegun_ += header.ack == 0 && port == FilePort ? 1 : 0;
        std::lock_guard const lock(mutex_);
        received_.emplace_back(port == FilePort ? Division::FileControl : Division::RobotControl,
                               static_cast<CommandNumber>(subHeader.command), subHeader.service);
    }

    std::vector<PortCommand> TakeReceived() {
        std::lock_guard const lock(mutex_);
        return std::exchange(received_, {});
    }

    std::string host_;
    simulator::VirtualController* controller_ = nullptr;
    std::mutex mutex_;
    std::vector<PortCommand> received_;
    std::atomic<unsigned> transfersBegun_ = 0;
    simulator::Server server_; // last: its thread ends first
};

std::optional<Access> MostAccess(std::vector<PortCommand> const& received) {
    std::optional<Access> most;
    for (PortCommand const& each : received) {
        most = std::max(most, std::optional(MinimumAccess(each.division, each.command, each.service)));
    }
    return most;
}

TEST_F(VerbAccess, EveryVerbSendsWhatItsAccessAllows) {
    test::ScratchFolder const folder;
    test::WriteFile("v.csv", "variable,value\nB7,1\n");
    test::WriteFile("NEW.DAT", "x");
    test::WriteFile("points.csv", "speed,x,y,z,rx,ry,rz\n9,790,20,1050,180,0,0\n");
    ASSERT_NO_FATAL_FAILURE(Serve());
    std::set<std::string> seen;
    for (VerbCase const& each : Verbs) {
        seen.insert(each.verb);
        std::string const line = std::string(each.verb) + " " + each.arguments;
        // So that a busy machine makes no read be sent again, which would come after its command has ended.
        Result const result = RunTool("--timeout 5000 " + line);
        EXPECT_NE(result.exit, 2) << line << result.err;
        std::vector<PortCommand> const received = TakeReceived();
        EXPECT_EQ(MostAccess(received), each.access) << line << "\n" << result.err;
        bool const keeps = each.verb == std::string_view("motion start"); // or nothing would be left to start
        bool const isFull = each.access == Access::Full && !keeps;
        bool const clears = std::ranges::count(received, CommandNumber::MotionClearTargets, &PortCommand::command) > 0;
        EXPECT_EQ(clears, isFull || line == "motion stop " || line == "motion clear " || line == "clear ") << line;
        EXPECT_EQ(result.err.starts_with("Connecting for this clears the motion targets"), isFull) << line;
        EXPECT_EQ(result.err.find("Code (327681)"), std::string::npos) << line << "\n" << result.err;
    }
    EXPECT_EQ(AllVerbs(), seen) << "every verb has a case";
}

TEST_F(VerbAccess, WhoDoesNotConfirmClearsNothing) {
    ASSERT_NO_FATAL_FAILURE(Serve());
    Result const result = RunTool("move R1 --line --to base:790,0,1050,180,0,0 --speed 9", "n\n", true);
    EXPECT_EQ(result.exit, 1);
    EXPECT_NE(result.err.find("clears the motion targets"), std::string::npos) << result.err;
    EXPECT_TRUE(TakeReceived().empty());
}

TEST_F(VerbAccess, BeginsADownloadAnewThatLostABlock) {
    test::ScratchFolder const folder;
    ASSERT_NO_FATAL_FAILURE(Serve());
    std::string const contents(9000, 'x');
    test::WriteFile("BIG.DAT", contents);
    ASSERT_EQ(RunTool("files put BIG.DAT").exit, 0);
    controller_->WithFaults([](simulator::FaultInjector& faults) {
        simulator::FaultPlan plan;
        EXPECT_EQ(plan.Parse("seed=3,file-drop=2%"), "");
        faults.SetPlan(plan);
    });
    unsigned most = 0;
    for (int download = 0; download < 10; ++download) {
        transfersBegun_ = 0;
        Result const fetched = RunTool("files cat BIG.DAT --timeout 60 --retries 1");
        EXPECT_TRUE(fetched.exit == 0 ? fetched.out == contents : fetched.out.empty());
        most = std::max(most, transfersBegun_.load());
    }
    EXPECT_GT(most, 1U);
}

/// What is lost is the write (w), the answer to it (a), the answer to the read-back (r) or nothing (.), one after the other.
TEST(Writes, AreRepeatedOnlyIfTheyDidNotAct) {
    struct Case {
        AfterLoss afterLoss;
        std::string_view losses;
        std::size_t writes;
        bool succeeds;
    };
    constexpr auto Again = AfterLoss::WriteAgain;
    constexpr auto Once = AfterLoss::ReadBack;
    std::istringstream in;
    std::ostringstream out;
    Console console{in, out, out, false, false, false};
    Output output(console);
    for (Case const& each :
         {Case{Again, ".", 1, true}, Case{Again, "a.", 1, true}, Case{Again, "w..", 2, true},
          Case{Again, "w.a.", 2, true}, Case{Again, "arr.", 1, true}, Case{Again, "arrrr", 1, false},
          Case{Again, "w.w.w.w.", 4, false}, Case{Once, "a.", 1, true}, Case{Once, "w.", 1, false}}) {
        auto left = each.losses.begin();
        std::size_t writes = 0;
        bool isHeld = false;
        auto const answered = [&](char expected) {
            return StatusInformation(left != each.losses.end() && *left++ == expected
                                         ? ErrorStatusCodes::ResponseTimeout
                                         : ErrorStatusCodes::Ok);
        };
        PendingWrite const pending{"B5",
                                   [&] {
                                       ++writes;
                                       bool const isLost = *left == 'w';
                                       isHeld = isHeld || !isLost;
                                       return answered(isLost ? 'w' : 'a');
                                   },
                                   [&](bool& held) {
                                       held = isHeld;
                                       return answered('r');
                                   },
                                   each.afterLoss};
        WriteReport const report = WriteEach(output, "Writing", {pending}, AfterFailure::GoOn);
        EXPECT_EQ(writes, each.writes) << each.losses;
        EXPECT_EQ(report.Succeeded(), each.succeeds) << each.losses;
        EXPECT_EQ(left, each.losses.end()) << each.losses;
    }
}

TEST(RepeatedRead, BeginsAnewOnlyAfterAnAnswerWasLostOrDamaged) {
    struct Case {
        ErrorStatusCodes code;
        int failures;
        int calls;
        int result;
    };
    constexpr int Never = 100;
    constexpr int TimedOut = static_cast<int>(ErrorStatusCodes::ResponseTimeout);
    constexpr int NoFile = static_cast<int>(ErrorStatusCodes::NoFilesWithExtension);
    constexpr int TooLarge = static_cast<int>(ErrorStatusCodes::FileTooLarge);
    std::istringstream in;
    std::ostringstream out;
    Console console{in, out, out, false, false, false};
    Output output(console);
    Progress progress(output, "");
    for (Case const& each :
         {Case{ErrorStatusCodes::ResponseTimeout, 3, 4, 0}, Case{ErrorStatusCodes::ResponseTimeout, Never, 4, TimedOut},
          Case{ErrorStatusCodes::FileBlockMissing, 1, 2, 0}, Case{ErrorStatusCodes::AnswerTooShort, 2, 3, 0},
          Case{ErrorStatusCodes::NoFilesWithExtension, Never, 1, NoFile},
          Case{ErrorStatusCodes::FileTooLarge, Never, 1, TooLarge}, Case{ErrorStatusCodes::Ok, 0, 1, 0}}) {
        int calls = 0;
        StatusInfo const status = ReadRepeatedly(progress, "Reading", [&] {
            return StatusInformation(++calls <= each.failures ? each.code : ErrorStatusCodes::Ok);
        });
        EXPECT_EQ(calls, each.calls) << static_cast<int>(each.code);
        EXPECT_EQ(status.StatusCode, each.result);
    }
    EXPECT_EQ(out.str(), "") << "a repetition is not an error";
}

} // namespace
} // namespace harvlink::cli
