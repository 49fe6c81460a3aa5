#include <array>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "ToolTest.h"
#include "cli/output/Output.h"
#include "cli/snapshot/Folder.h"
#include "cli/snapshot/LineDifference.h"
#include "cli/snapshot/Staging.h"
#include "support/ScratchFolder.h"
#include "words/values/SafeName.h"

namespace harvlink::cli {
namespace {

namespace filesystem = std::filesystem;
using namespace snapshot;
using simulator::ControllerModel;
using simulator::Fault;
using simulator::FaultPlan;
using test::ContentOf;
using Scratch = test::ScratchFolder;

TEST(SafeName, KeepsEveryNameInsideItsFolderAndGivesItBack) {
    struct Case {
        std::string name;
        char const* safe;
    };
    std::array<Case, 6> const cases{{{"MAIN-2 (OLD).JBI", "MAIN-2 (OLD).JBI"},
                                     {"../../X.JBI", "%2E.%2F..%2FX.JBI"},
                                     {".git", "%2Egit"},
                                     {"50%41.DAT", "50%2541.DAT"},
                                     {"\x83W\xff.JBI", "%83W%FF.JBI"},
                                     {std::string("A\0\n*.JBI", 8), "A%00%0A%2A.JBI"}}};
    for (Case const& expected : cases) {
        EXPECT_EQ(SafeName(expected.name), expected.safe);
        EXPECT_EQ(OriginalName(expected.safe), expected.name);
    }
    EXPECT_EQ(OriginalName("5%"), "5%");
    EXPECT_EQ(OriginalName("%4"), "%4");
    EXPECT_EQ(OriginalName("%zz"), "%zz");
}

TEST(LineDifference, NamesTheFewestLines) {
    struct Case {
        std::string before;
        std::string after;
        char const* changes;
    };
    std::array<Case, 7> const cases{{{"a\r\nb\r\nc\r\n", "a\r\nb\r\nc\r\n", ""},
                                     {"a\nb\nc\n", "a\nx\nc\n", "-2b+2x"},
                                     {"a\nc\n", "a\nb\nc\n", "+2b"},
                                     {"a\na\na\n", "a\na\n", "-3a"},
                                     {"", "a\n", "+1a"},
                                     {"b\na\nc\nd\n", "a\nc\nx\nd\n", "-1b+3x"},
                                     {std::string("a\0", 2), "a", ""}}};
    for (Case const& expected : cases) {
        std::string changes;
        for (LineChange const& change : LineDifference(expected.before, expected.after)) {
            changes += change.sign + std::to_string(change.line) + change.text;
        }
        EXPECT_EQ(changes, expected.changes) << expected.before;
    }
}

TEST(LineDifference, NamesTheLinesOfLongTexts) {
    std::string before;
    std::string other;
    for (int line = 1; line <= 20'000; ++line) {
        before += std::to_string(line) + "\n";
        other += "x" + std::to_string(line) + "\n";
    }
    std::string after = before;
    after.replace(after.find("\n7\n"), 3, "\nseven\n");
    after.replace(after.find("\n19990\n"), 7, "\n");
    std::vector<LineChange> const expected{{'-', 7, "7"}, {'+', 7, "seven"}, {'-', 19'990, "19990"}};
    EXPECT_EQ(LineDifference(before, after), expected);
    EXPECT_GE(LineDifference(before, other).size(), 40'000U) << "nothing is left out, and it ends";
}

class SnapshotTest : public ToolTest {
protected:
    void Plan(Fault fault, double rate) {
        controller_->WithFaults([&](simulator::FaultInjector& faults) {
            FaultPlan plan;
            plan.Rate(fault) = rate;
            faults.SetPlan(plan);
        });
    }

    Scratch scratch_;
};

TEST_F(SnapshotTest, SavesWhatTheControllerHasAndShowsWhatChanged) {
    ASSERT_EQ(RunTool("var set B5=12 S1=a,\"b R1=0.1 P2=base:480,0,600.5,180,0,0,tool=1").exit, 0);
    Result const saved = RunTool("snapshot save cell --json --param RS0..30 S1C0..2");
    ASSERT_EQ(saved.exit, 0) << saved.err;
    Snapshot const cell = Read("cell");
    EXPECT_EQ(cell.tables.at("groups"), (Entries{{"R1", "SLURBT"}}));
    EXPECT_EQ(cell.tables.at("variables").size(), With([](ControllerModel& model) {
                  auto const& all = model.variables;
                  return all.bytes.size() + all.integers.size() + all.doubleInts.size() + all.reals.size() +
                         all.strings.size() + all.robotPositions.size() + all.basePositions.size() +
                         all.stationPositions.size();
              }));
    EXPECT_EQ(cell.tables.at("signals").size(), 512U * 4 + 256 * 3 + 512 + 64 + 999 + 512 + 20);
    EXPECT_EQ(cell.tables.at("parameters").front(), (Entry{"RS0", "0"}));
    EXPECT_EQ(cell.tables.at("parameters").back(), (Entry{"S1C2@R1", "0"}));
    EXPECT_EQ(ContentOf("cell/files/DEMO.JBI"), RunTool("files cat DEMO.JBI").out);
    EXPECT_NE(ContentOf("cell/variables.csv").find("\nS1,\"a,\"\"b\"\n"), std::string::npos);
    EXPECT_EQ(RunTool("var load cell/variables.csv").exit, 0) << "one file serves both";

    EXPECT_EQ(RunTool("snapshot diff cell live").exit, 0);
    ASSERT_EQ(RunTool("var set B5=13").exit, 0);
    ASSERT_EQ(RunTool("io set 10013=1").exit, 0);
    ASSERT_EQ(RunTool("files delete PICK").exit, 0);
    std::string job = ContentOf("cell/files/DEMO.JBI");
    job.replace(job.find("SET I000 0"), 10, "SET I000 1");
    test::WriteFile("DEMO.JBI", job);
    ASSERT_EQ(RunTool("files put DEMO.JBI --force").exit, 0);
    Result const changed = RunTool("snapshot diff cell live");
    EXPECT_EQ(changed.exit, 1) << changed.err;
    EXPECT_NE(changed.out.find("variables\n  B5  12 -> 13\nsignals\n  10013  off -> on\nfiles\n"), std::string::npos)
        << changed.out;
    EXPECT_NE(changed.out.find("    -8  SET I000 0\n    +8  SET I000 1\n"), std::string::npos) << changed.out;
    EXPECT_NE(changed.out.find("  PICK.JBI  148 bytes -> (none)\n"), std::string::npos) << changed.out;
    Json const document = Json::parse(RunTool("snapshot diff cell live --json").out);
    EXPECT_EQ(document["same"], false);
    for (Json const& change : document["changes"]) {
        if (change["name"] == "DEMO.JBI") {
            EXPECT_EQ(change["lines"][1], (Json{{"sign", "+"}, {"line", 8}, {"text", "SET I000 1"}}));
        }
        EXPECT_EQ(change["after"].is_null(), change["name"] == "PICK.JBI") << change;
    }
    ASSERT_EQ(RunTool("snapshot save five --only variables --var B5").exit, 0);
    Json const same = Json::parse(RunTool("snapshot diff live five --json").out);
    EXPECT_EQ(same["same"], true);
    EXPECT_EQ(same["changes"], Json::array());
    Result const compared = RunTool("snapshot diff cell five");
    EXPECT_EQ(compared.exit, 1);
    EXPECT_NE(compared.err.find("only one of the two has files; they were not compared"), std::string::npos);
    EXPECT_NE(RunTool("snapshot show cell").out.find("Complete"), std::string::npos);
    EXPECT_EQ(Json::parse(RunTool("snapshot show cell --json").out)["complete"], true);
    EXPECT_NE(RunTool("snapshot show cell files").out.find("DEMO.JBI"), std::string::npos);
    EXPECT_NE(RunTool("snapshot show cell files/NOPE").err.find("has no file 'NOPE'"), std::string::npos);
    EXPECT_EQ(Json::parse(RunTool("snapshot show cell files/DEMO.JBI --json").out)["name"], "DEMO.JBI");
    EXPECT_NE(RunTool("snapshot show cell variables").out.find("B5"), std::string::npos);
    EXPECT_NE(RunTool("snapshot show cell nope").err.find("'nope'; it has: groups, variables, "), std::string::npos);
    EXPECT_EQ(RunTool("snapshot show cell files/DEMO.JBI").out, ContentOf("cell/files/DEMO.JBI"));
}

TEST_F(SnapshotTest, LosesNothing) {
    ASSERT_EQ(RunTool("snapshot save cell --only files variables --var B0..9").exit, 0);
    std::string const before = ContentOf("cell/variables.csv");
    test::WriteFile("text", "x");
    filesystem::create_directories("other/deep");
    filesystem::create_directories("mixed/.git");
    filesystem::copy("cell", "mixed");
    for (char const* const folder : {"cell", "text", "other --force", "mixed --force", "none/cell", "/dev/null/x",
                                     "new --only nope", "new --var X1", "new --param Q", "new --files a.txt"}) {
        EXPECT_EQ(RunTool(std::string("snapshot save ") + folder).exit, 2) << folder;
    }
    Plan(Fault::Refuse, 1.0);
    EXPECT_EQ(RunTool("snapshot save cell --force").exit, 1) << "nothing could be read";
    ASSERT_EQ(RunTool("var set B1=1").exit, 1);
    controller_->WithFaults([](simulator::FaultInjector& faults) {
        FaultPlan
            plan; // with this seed, the files that a connection opens with are not refused, and the list of jobs is
        EXPECT_EQ(plan.Parse("seed=20,file-refuse=20%,refuse-count=100000"), "");
        faults.SetPlan(plan);
    });
    Result const partial = RunTool("snapshot save cell --only files variables --var B0..9 --force");
    EXPECT_EQ(partial.exit, 1);
    EXPECT_NE(partial.err.find("files/*.JBI: Code (8288)"), std::string::npos) << partial.err;
    EXPECT_EQ(ContentOf("cell/variables.csv"), before);
    EXPECT_TRUE(filesystem::exists("cell/files/DEMO.JBI"));
    EXPECT_EQ(ContentOf("cell.incomplete/variables.csv"), before);
    EXPECT_EQ(RunTool("snapshot diff cell cell.incomplete").exit, 2) << "not all can be compared";
    EXPECT_EQ(RunTool("snapshot diff cell none").exit, 2);
    EXPECT_EQ(RunTool("snapshot diff live live").exit, 2);
    for (char const* const manifest : {"{}", "x", R"({"format":"harvlink-snapshot","format_version":99})"}) {
        test::WriteFile("mixed/snapshot.json", manifest);
        Result const shown = RunTool("snapshot show mixed");
        EXPECT_EQ(shown.exit, 2) << manifest;
        EXPECT_EQ(shown.err.find("json.exception"), std::string::npos) << shown.err;
    }
    EXPECT_EQ(RunTool("snapshot diff cell cell").exit, 0);
    EXPECT_EQ(std::distance(filesystem::directory_iterator("."), {}), 5) << "no scratch folder is left";
}

TEST(Staging, PutsTheOldSnapshotBackIfTheNewOneCannotBeMoved) {
    Scratch const folder;
    filesystem::create_directory("cell");
    test::WriteFile("cell/a", "x");
    ScratchSpace scratch(".");
    EXPECT_THROW(MoveInto("not-there", "cell", scratch), filesystem::filesystem_error);
    EXPECT_EQ(ContentOf("cell/a"), "x");
}

TEST_F(SnapshotTest, WritesBackWhatCanBeWritten) {
    ASSERT_EQ(RunTool("var set B5=12 S1=a\\xE9 P2=base:480,0,600.5,180,0,0,tool=1").exit, 0);
    ASSERT_EQ(RunTool("register set 5=7").exit, 0);
    ASSERT_EQ(RunTool("io set 10010=1").exit, 0);
    ASSERT_EQ(RunTool("snapshot save cell --var B0..9 S0..3 P0..3 --param RS0..3 --files D*.JBI RS.PRM").exit, 0);
    ASSERT_EQ(RunTool("var set B5=13 S1=x P2=pulse:1,2,3,4,5,6").exit, 0);
    ASSERT_EQ(RunTool("register set 5=8").exit, 0);
    ASSERT_EQ(RunTool("io set 10010=0").exit, 0);
    ASSERT_EQ(RunTool("files delete DEMO").exit, 0);
    EXPECT_EQ(RunTool("snapshot restore cell").exit, 2) << "--yes is needed";
    EXPECT_EQ(RunTool("snapshot restore cell --only parameters --yes").exit, 2);
    Json const plan = Json::parse(RunTool("snapshot restore cell --dry-run --json").out);
    EXPECT_EQ(plan["plan"].size(), 5U) << plan.dump(2);
    EXPECT_EQ(plan["plan"][0]["name"], "DEMO.JBI");
    EXPECT_EQ(plan["written"], 0);
    EXPECT_EQ(RunTool("snapshot restore cell --dry-run").out.find("Still differs"), std::string::npos);
    EXPECT_EQ(RunTool("snapshot diff cell live").exit, 1);
    Result const one = RunTool("snapshot restore cell --only registers --yes");
    EXPECT_EQ(one.exit, 0) << one.err;
    EXPECT_NE(one.out.find("5  8 -> 7\n"), std::string::npos) << one.out;
    EXPECT_NE(one.out.find("1 of 1 written, 0 still differ\n"), std::string::npos) << one.out;
    EXPECT_EQ(RunTool("snapshot restore cell --yes").exit, 0);
    Json const left = Json::parse(RunTool("snapshot diff live cell --json").out);
    ASSERT_EQ(left["changes"].size(), 1U) << "signals only if they are named";
    Result const signals = RunTool("snapshot restore cell --only signals --yes --json");
    EXPECT_EQ(signals.exit, 0) << signals.err;
    EXPECT_EQ(Json::parse(signals.out)["written"], 1);
    EXPECT_EQ(RunTool("snapshot diff cell live").exit, 0);
    EXPECT_NE(RunTool("snapshot restore cell --yes").out.find("0 of 0 written"), std::string::npos);
}

TEST_F(SnapshotTest, OutlivesLostAnswers) {
    controller_->WithFaults([](simulator::FaultInjector& faults) {
        FaultPlan plan;
        plan.seed = 4; // with this seed, no answer is lost while the connection opens
        plan.Rate(Fault::Drop) = 0.03;
        faults.SetPlan(plan);
    });
    Result const saved =
        RunTool("--timeout 20 --retries 1 snapshot save cell --only groups variables files --var B0..99");
    EXPECT_EQ(saved.exit, 0) << saved.err;
}

TEST_F(SnapshotTest, ServesOlderControllers) {
    server_ = std::make_unique<simulator::Server>();
    server_->Add(host_, {.generation = ControllerVersion::VersionFS});
    ASSERT_TRUE(server_->Start()) << server_->Error();
    Result const saved = RunTool("snapshot save cell --only groups parameters signals");
    EXPECT_EQ(saved.exit, 0) << saved.err;
    Snapshot const cell = Read("cell");
    EXPECT_FALSE(cell.HasSection("parameters"));
    EXPECT_EQ(cell.tables.at("groups").size(), 1U);
    EXPECT_EQ(cell.controller.back(), (Entry{"generation", "FS"}));
}

} // namespace
} // namespace harvlink::cli
