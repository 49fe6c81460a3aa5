#include <array>
#include <filesystem>
#include <future>
#include <memory>
#include <string>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "ToolTest.h"
#include "cli/output/CellTable.h"
#include "support/ScratchFolder.h"

// One command for several cells of the configuration file.

namespace harvlink::cli {
namespace {

using simulator::ControllerModel;

class CellsTest : public testing::Test {
protected:
    static constexpr std::size_t Count = 3;

    CellsTest() {
        for (int attempt = 0; attempt < 10 && !isUp_; ++attempt) {
            server_ = std::make_unique<simulator::Server>();
            std::string file = "timeout = 1000\nretries = 60\n";
            for (std::size_t i = 0; i < Count; ++i) {
                controllers_.at(i) = &server_->Add(test::NextLoopbackAddress());
                file += fmt::format("[cell.{}]\nhost = \"{}\"\n", Names.at(i), controllers_.at(i)->Address());
            }
            test::WriteFile("config.toml", file);
            server_->SetObserver([this](auto const& controller, simulator::Request const& request, auto const&) {
                Observe(controller, request.subHeader.command);
            });
            isUp_ = server_->Start();
        }
        controllers_[1]->With([](ControllerModel& model) { model.variables.bytes[5] = 55; });
    }

    void Observe(simulator::VirtualController const& controller, std::uint16_t command) {
        for (std::size_t i = 0; i < Count; ++i) {
            if (&controller == controllers_.at(i) && command == std::uint16_t(CommandNumber::StatusRead)) {
                timesRead_.at(i) += 1;
            }
        }
        if (timesRead_[1] == 1 && timesRead_[2] == 1 && !areOthersRead_) {
            areOthersRead_ = true;
            othersRead_.set_value();
        }
    }

    static Result Run(std::string const& line) { return RunTool("--config config.toml " + line); }

    void Silence(std::uint32_t requests) {
        controllers_[0]->WithFaults([=](simulator::FaultInjector& faults) {
            simulator::FaultPlan plan;
            plan.Rate(simulator::Fault::Drop) = requests > 0 ? 1.0 : 0.0;
            faults.SetPlan(plan);
        });
    }

    static constexpr std::array<char const*, Count> Names{"a", "press_2", "weld"};

    test::ScratchFolder folder_;
    std::array<simulator::VirtualController*, Count> controllers_{};
    std::array<int, Count> timesRead_{}; // the server's thread only
    bool areOthersRead_ = false; // the same
    std::promise<void> othersRead_;
    bool isUp_ = false;
    std::unique_ptr<simulator::Server> server_; // last: its thread ends first
};

TEST_F(CellsTest, AreReadAtOnceWhileOneIsSilent) {
    Silence(1);
    auto result = std::async(std::launch::async, [] { return Run("--all status --json"); });
    EXPECT_EQ(othersRead_.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready)
        << "a silent cell, the first by name, delays the others";
    EXPECT_EQ(result.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    Silence(0);
    Result const done = result.get();
    EXPECT_EQ(done.exit, 0) << done.err;
    Json const all = Json::parse(done.out);
    ASSERT_EQ(all.size(), Count);
    for (char const* const name : Names) {
        EXPECT_EQ(all[name]["mode"], "remote") << name;
    }
}

TEST_F(CellsTest, ShowAColumnOrAKeyEach) {
    Silence(1);
    std::string const quick = "--all --timeout 50 --retries 0 ";
    Result const table = Run(quick + "var get B5 B6");
    EXPECT_EQ(table.exit, 1);
    EXPECT_EQ(table.out, "    a  press_2  weld\nB5  -  55       0\nB6  -  0        0\n") << table.err;
    EXPECT_TRUE(table.err.starts_with("harvlink: a: Code (196614)")) << table.err;
    Json const documents = Json::parse(Run(quick + "var get B5 --json").out);
    EXPECT_TRUE(documents["a"].is_null());
    EXPECT_EQ(documents["press_2"][0]["value"], 55);
    // A command that prints text prints that of each cell.
    Result const text = Run("--cell weld --cell press_2 var dump --kind B");
    EXPECT_TRUE(text.out.starts_with("weld:\nvariable,value\nB0,0\n")) << text.out.substr(0, 60);
    EXPECT_NE(text.out.find("press_2:\n"), std::string::npos);
    // Files go into a folder for each cell.
    EXPECT_EQ(Run("--cell weld --cell press_2 files get TOOL.CND").exit, 0);
    EXPECT_EQ(test::ContentOf("weld/TOOL.CND"), test::ContentOf("press_2/TOOL.CND"));
    EXPECT_GT(std::filesystem::file_size("weld/TOOL.CND"), 100U);
    Result const series = Run("--cell weld --cell press_2 io watch 999999 --json");
    EXPECT_EQ(series.exit, 1);
    EXPECT_NE(series.err.find("press_2: "), std::string::npos);
}

TEST_F(CellsTest, RefuseWhatIsForOne) {
    struct Case {
        char const* line;
        char const* problem;
    };
    for (Case const& each :
         {Case{"--all var set B1=1", "works on one controller"},
          Case{"--cell a --cell weld servo on --yes", "works on one controller"},
          Case{"--all job start --yes", "works on one controller"},
          Case{"--all io byte 10010=1", "works on one controller"}, Case{"--all config", "works on one controller"},
          Case{"--all var dump --out f.csv", "--out names one file"},
          Case{"--all --cell a status", "give --all or --cell, not both"},
          Case{"--all --host 127.0.0.1 status", "--host names one controller"},
          Case{"--cell a --cell a status", "--cell a is given twice"},
          Case{"--cell a --cell b status", "there is no cell 'b'"},
          Case{"--all doctor 127.0.0.1", "give HOST or several cells"}, Case{"--all watch", "needs a terminal"}}) {
        Result const result = Run(each.line);
        EXPECT_EQ(result.exit, 2) << each.line << result.err;
        EXPECT_NE(result.err.find(each.problem), std::string::npos) << each.line << "\n" << result.err;
        EXPECT_EQ(controllers_[1]->Traffic().requests, 0U) << each.line;
    }
    EXPECT_NE(RunTool("--config /dev/null --all status").err.find("names no cells"), std::string::npos);
}

TEST(CellTable, LinesUpWhatCellsHaveInCommon) {
    Json const few{{"mode", "play"}, {"groups", Json::array({{{"group", "R1"}, {"axes", 6}, {"name", "x"}}})}};
    Json const more{{"mode", "teach"}, {"hold", true}, {"groups", Json::array()}};
    std::vector<CellDocument> const cells{{"a", few}, {"b", more}, {"c", nullptr}};
    EXPECT_EQ(FormatCells(cells, false, 0), "         a     b      c\n"
                                            "Mode     play  teach  -\n"
                                            "Hold     -     yes    -\n"
                                            "Groups   -     none   -\n"
                                            "R1 axes  6     -      -\n"
                                            "R1 name  x     -      -\n");
    EXPECT_EQ(FormatCells({{"a", Json::array()}, {"b", nullptr}}, false, 0), "  a     b\n  none  -\n");
    EXPECT_EQ(FormatCells({{"a", Json{{"k", 1}}}, {"b", Json{{"k", 2}}}}, false, 4), "   a\nK  1\n\n   b\nK  2\n");
}

} // namespace
} // namespace harvlink::cli
