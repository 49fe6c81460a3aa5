#include <chrono>
#include <set>
#include <thread>

#include "ToolTest.h"
#include "support/RecordedSamples.h"
#include "support/ScratchFolder.h"
#include "words/text/Json.h"

namespace harvlink::cli {
namespace {

namespace store = harvlink::recording;

class RecordingCommandsTest : public testing::Test {
protected:
    RecordingCommandsTest() {
        store::SampleStore file("x.harvlink");
        store::Cell const cell(file);
        file.Begin();
        for (int i = 0; i < 4; ++i) {
            file.Put(store::At(i * store::Second, cell.position, {i * 0.5, -1.0}));
        }
        file.Put(store::RecordedEvent{store::Begin + store::Second, 78 * store::Second, cell.controller, "alarm-raised",
                                      0, 4107, 0, "OUT OF RANGE", "Check the origin."});
        file.Put(store::RecordedGap{store::Begin + 2 * store::Second, 79 * store::Second, 1'500'000, 42, "the disk"});
        file.Commit();
        file.Close();
    }

    test::ScratchFolder folder_;
};

TEST_F(RecordingCommandsTest, ShowsExportsAndCuts) {
    Json const info = Json::parse(RunTool("recording info x.harvlink --json").out);
    EXPECT_EQ(info["samples"], 4);
    EXPECT_EQ(info["missing_samples"], 42);
    EXPECT_EQ(info["controllers"][0]["items"], 4);
    EXPECT_EQ(info["items"][0]["unit"], "mm");
    Json const events = Json::parse(RunTool("recording events x.harvlink --json").out);
    ASSERT_EQ(events.size(), 2);
    EXPECT_EQ(events[0]["after"], 4107);
    EXPECT_EQ(events[1]["event"], "gap");
    EXPECT_EQ(RunTool("recording events x.harvlink --from +1500ms --json").out.find("alarm"), std::string::npos);
    EXPECT_NE(RunTool("recording export x.harvlink --wide --every 1s --decimal comma").out.find("Z;1,000000;0,5;-1;;"),
              std::string::npos);
    EXPECT_EQ(Json::parse(RunTool("recording export x.harvlink --json --out x.csv").out)["rows"], 5);
    EXPECT_EQ(RunTool("recording cut x.harvlink --from +1s --out y.harvlink").exit, 0);
    EXPECT_EQ(Json::parse(RunTool("recording info y.harvlink --json").out)["samples"], 3);
}

TEST_F(RecordingCommandsTest, WritesAPlotThatNeedsNothingElse) {
    Json const result = Json::parse(RunTool("recording plot x.harvlink --item 'position R1 base' --json").out);
    EXPECT_EQ(result["file"], "x.html");
    EXPECT_EQ(result["events"], 1);
    std::string const page = test::ContentOf("x.html");
    std::string const begin = "<script type=\"application/json\" id=\"content\">";
    std::size_t const start = page.find(begin) + begin.size();
    Json const content = Json::parse(page.substr(start, page.find("</script>", start) - start));
    ASSERT_EQ(content["series"].size(), result["lines"]);
    Json const& line = content["series"][0];
    EXPECT_EQ(line["unit"], "mm");
    EXPECT_EQ(line["last"], Json({0.0, 0.5, 1.0, 1.5}));
    EXPECT_EQ(content["events"][0]["code"], 4107);
    EXPECT_EQ(page.find(" src="), std::string::npos) << "all of it stands in the file";
    EXPECT_EQ(page.find(" href="), std::string::npos);
    EXPECT_EQ(RunTool("recording plot x.harvlink --item 'position R1 base'").exit, 1) << "the file is there";
    EXPECT_EQ(RunTool("recording plot x.harvlink --item 'position R1 base' --from +2s --force").exit, 0);
}

using RecordTest = ToolTest;

TEST_F(RecordTest, RecordsAndKeepsABlackBoxBesides) {
    test::ScratchFolder const folder;
    simulator::Server other;
    simulator::VirtualController& weld = other.Add(test::NextLoopbackAddress());
    ASSERT_TRUE(other.Start()) << other.Error();
    test::WriteFile("cells.toml",
                    "[cell.press1]\nhost = \"" + host_ + "\"\n[cell.weld]\nhost = \"" + weld.Address() + "\"\n");
    std::string const run =
        "--config cells.toml --cell press1 --cell weld record --every 20ms --for 4s --before 1s --json ";
    std::jthread const work([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(1000));
        for (simulator::VirtualController* const controller : {controller_, &weld}) {
            controller->With([](simulator::ControllerModel& model) { model.RaiseAlarm(4107, 3, "OUT OF RANGE"); });
        }
    });
    Result const result = RunTool(run + "--out x.harvlink --ring ring.harvlink --io general-output:1.0..1 --io "
                                        "10020..10021 --register 3..4 --var B0 S4");
    EXPECT_EQ(result.exit, 0) << result.err;
    Json const info = Json::parse(RunTool("recording info x.harvlink --json").out);
    EXPECT_EQ(info["controllers"].size(), 2);
    std::set<std::string> signals;
    for (Json const& item : info["items"]) {
        std::string const name = item["item"].get<std::string>();
        if (name.starts_with("signal")) {
            signals.insert(name);
        }
    }
    EXPECT_EQ(signals.size(), 4) << result.out;
    EXPECT_NE(info["items"].dump().find("register 4"), std::string::npos);
    for (char const* const item : {"S4", "s004", "b0", "B000"}) {
        EXPECT_EQ(RunTool(std::string("recording export x.harvlink --item ") + item).exit, 0) << item;
    }
    std::size_t incidents = 0;
    for (auto const& file : std::filesystem::directory_iterator(".")) {
        incidents += file.path().string().find("-alarm-4107.harvlink") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(incidents, 2);
    Result const wrong = RunTool("--config cells.toml --cell weld --generation DN record --for 4s --out y.harvlink");
    EXPECT_EQ(wrong.exit, 1);
    EXPECT_NE(wrong.err.find("weld: not of generation DN"), std::string::npos) << wrong.err;
    EXPECT_EQ(RunTool("record --ring x --out y").exit, 2);
    EXPECT_EQ(RunTool("record").exit, 2);
}

TEST_F(RecordingCommandsTest, SaysWhatIsWrong) {
    struct Case {
        char const* line;
        int exit;
        char const* text;
    };
    for (Case const& wrong : {Case{"info missing.harvlink", 1, "there is no such file"},
                              Case{"export x.harvlink --item speed", 2, "has no item 'speed'"},
                              Case{"events x.harvlink --controller press2", 2, "has no controller 'press2'"},
                              Case{"plot x.harvlink", 2, "choose what to plot with --item"},
                              Case{"plot x.harvlink --item 'register 3' --out none/x.html", 1, "can't write into none"},
                              Case{"export x.harvlink --every 0s", 2, "more than 0"},
                              Case{"export x.harvlink --from noon", 2, "'noon' is not a time"},
                              Case{"cut x.harvlink --from +2s --to +1s --out z", 2, "the end must be after"},
                              Case{"cut x.harvlink --out x.harvlink", 1, "there is a file of that name"},
                              Case{"export x.harvlink --out x.harvlink", 1, "File exists"},
                              Case{"export x.harvlink --out /dev/full", 1, "No space left on device"},
                              Case{"export x.harvlink --out /missing/x.csv", 1, "can't write"}}) {
        Result const result = RunTool(std::string("recording ") + wrong.line);
        EXPECT_EQ(result.exit, wrong.exit) << wrong.line;
        EXPECT_NE(result.err.find(wrong.text), std::string::npos) << result.err;
    }
}

} // namespace
} // namespace harvlink::cli
