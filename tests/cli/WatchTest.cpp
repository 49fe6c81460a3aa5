#include <array>
#include <cerrno>
#include <csignal>
#include <string>
#include <system_error>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include "ToolTest.h"
#include "cli/output/Output.h"
#include "cli/watch/BoardText.h"
#include "cli/watch/Layout.h"
#include "support/ScratchFolder.h"
#include "words/text/Encoding.h"
#include "words/text/Printable.h"

namespace harvlink::cli {
namespace {

using simulator::ControllerModel;
using namespace watch;

Sample SampleOfEverything() {
    Sample sample;
    sample.host = "192.168.255.1";
    sample.model = "MODEL\x1b[2J";
    sample.time = Sample::Time(std::chrono::seconds(1));
    sample.alarms.value.alarms[2] = {4107, 1, "2026/01/02 03:04", "Out of range"};
    sample.groups.push_back({"R1", "SLURBTEW", {}, Reading<GroupSample::Axes>{}, {}});
    sample.groups.push_back({"S1", "", {StatusInformation(40961), {}}, {}, {}});
    for (int i = 0; i < 40; ++i) {
        sample.variables.push_back({fmt::format("B{}", i), {{}, std::uint8_t{200}}});
        sample.signals.push_back({fmt::format("{}", 10010 + i), {{}, true}});
    }
    return sample;
}

TEST(WatchLayout, FitsEveryWindow) {
    Sample sample = SampleOfEverything();
    for (bool const isLost : {false, true}) {
        sample.lost =
            isLost ? std::optional<StatusInfo>(StatusInformation(ErrorStatusCodes::ResponseTimeout)) : std::nullopt;
        for (std::size_t rows = 0; rows < 70; rows += rows < 4 ? 1 : 13) {
            for (std::size_t columns = 0; columns < 200; columns += columns < 12 ? 1 : 17) {
                std::size_t scrolled = rows % 3;
                std::vector<Line> const lines = LayOut(sample, {rows, columns}, scrolled);
                EXPECT_EQ(lines.size(), columns == 0 ? 0 : rows);
                for (Line const& line : lines) {
                    std::size_t width = 0;
                    for (Span const& span : line) {
                        width += span.text.size();
                        EXPECT_EQ(span.text.find('\x1b'), std::string::npos);
                    }
                    EXPECT_LE(width, columns) << rows << " x " << columns;
                }
            }
        }
        std::string const text = PlainText(sample, 80);
        EXPECT_EQ(text.find("NO ANSWER since") != std::string::npos, isLost);
        EXPECT_NE(text.find("4107-1 Out of range"), std::string::npos);
        EXPECT_NE(text.find("Code (40961)"), std::string::npos);
        EXPECT_NE(text.find("B39 200"), std::string::npos);
    }
    struct Case {
        std::size_t scrolled;
        char const* footer;
        char const* second; ///< begins the line below the title
    };
    std::array<Case, 3> const cases{
        {{0, "lines 2 to 9 of 31", "NO ANSWER"}, {3, "lines 5 to 12 of 31", " "}, {999, "lines 24 to 31 of 31", ""}}};
    for (Case const& each : cases) {
        std::size_t scrolled = each.scrolled;
        std::vector<Line> const lines = LayOut(sample, {10, 80}, scrolled);
        EXPECT_NE(lines.back().front().text.find(each.footer), std::string::npos) << lines.back().front().text;
        EXPECT_TRUE(lines[0].front().text.starts_with("192.168.255.1"));
        EXPECT_TRUE(lines[1].front().text.starts_with(each.second)) << lines[1].front().text;
        EXPECT_EQ(scrolled, std::min<std::size_t>(each.scrolled, 22)) << "there is no more to scroll";
    }
    EXPECT_LT(PlainText(sample, 200).find("S1 "), PlainText(sample, 200).find("Pulses")) << "groups side by side";
}

TEST(WatchLayout, LinesUpWideCharacters) {
    ThreadEncoding const encoding{TextEncoding()}; // whatever a test before this one has set
    Sample sample = SampleOfEverything();
    sample.variables = {{"S1", {{}, std::string("\u6eb6\u63a5")}}, {"S2", {{}, std::string("ab\u009b31m")}}};
    sample.variables.resize(4, {"S3", {{}, std::string("0123456789012345678901234567")}});
    std::string const text = PlainText(sample, 80);
    std::size_t const line = text.find("Values   S1");
    std::size_t const start = text.rfind('\n', line) + 1;
    std::size_t const second = text.find("S2 ", line);
    EXPECT_EQ(ColumnsOf(text.substr(start, second - start)), 9U + 31U + 3U) << text;
    EXPECT_NE(text.find("ab?31m"), std::string::npos);
}

class WatchTest : public ToolTest {};

TEST_F(WatchTest, ShowsOneLookAsTextAndAsJson) {
    With([](ControllerModel& model) {
        model.variables.bytes[5] = 12;
        model.signals.Write(10013, true);
    });
    Result const text = RunTool("watch --once --group R1 S1 --var B5 B4000 --io 10013 10018");
    EXPECT_EQ(text.exit, 0) << text.err;
    for (char const* const part : {"mode remote", "Alarms   none", "Pulses             0", "Base         790.000",
                                   "Pulses   Code (196629)", "B5 12", "10013 on", "B4000 Code (196616)"}) {
        EXPECT_NE(text.out.find(part), std::string::npos) << part << '\n' << text.out;
    }
    Json const sample = Json::parse(RunTool("watch --once --json --group R1 S1 --var B5 --io 10013").out);
    EXPECT_EQ(sample["variables"]["B5"], 12);
    EXPECT_EQ(sample["signals"]["10013"], true);
    EXPECT_EQ(sample["groups"][0]["base"].size(), 6U);
    EXPECT_TRUE(sample["groups"][1]["pulses"].is_null());
    EXPECT_EQ(sample["problems"][0]["what"], "S1 pulses");
    Result const refused = RunTool("watch");
    EXPECT_EQ(refused.exit, 2);
    EXPECT_NE(refused.err.find("give --once"), std::string::npos);
}

/// The program, run on its own terminal.
class OnTerminal {
public:
    OnTerminal(std::string const& line, char const* type) {
        winsize const size{24, 80, 0, 0};
        modes_ = ModesOfANewTerminal(); // asked for later, they could be those that the program has set
        pid_ = ::forkpty(&master_, nullptr, &modes_, &size);
        if (pid_ == 0) {
            ::setenv("TERM", type, 1);
            Arguments arguments = Words("harvlink " + line);
            std::vector<char*> argv;
            for (std::string& argument : arguments) {
                argv.push_back(argument.data());
            }
            argv.push_back(nullptr);
            ::execv(HARVLINK_PROGRAM, argv.data());
            ::_exit(127);
        }
        if (pid_ < 0) {
            throw std::system_error(errno, std::generic_category(), "this computer gives no pseudo-terminal");
        }
    }
    OnTerminal(OnTerminal const&) = delete;
    OnTerminal& operator=(OnTerminal const&) = delete;
    ~OnTerminal() {
        ::close(master_);
        End();
    }

    /// Reads until this text is drawn again. The clock is redrawn all the time, so the amount to read has a limit.
    bool Shows(std::string const& text) {
        constexpr int MostReads = 5000;
        output_.clear();
        for (int reads = 0; reads < MostReads && output_.find(text) == std::string::npos; ++reads) {
            if (!ReadMore()) {
                return false;
            }
        }
        return output_.find(text) != std::string::npos;
    }

    void Resize(unsigned short rows, unsigned short columns) const {
        winsize const size{rows, columns, 0, 0};
        ::ioctl(master_, TIOCSWINSZ, &size);
    }

    void Type(char key) const { EXPECT_EQ(::write(master_, &key, 1), 1); }
    void Signal(int number) const { ::kill(pid_, number); }

    /// Reads to the end and returns the exit status, or -1 if a signal ended it.
    int End() {
        while (ReadMore()) {
        }
        int status = -1;
        if (pid_ > 0) {
            ::waitpid(pid_, &status, 0);
            pid_ = -1;
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    /// Whether the former screen and the cursor are restored, and nothing is drawn after that.
    bool IsClean() const {
        std::size_t const restored = output_.rfind("\x1b[?1049l");
        return restored != std::string::npos && output_.rfind("\x1b[?25h") != std::string::npos &&
               output_.find("\x1b[H", restored) == std::string::npos;
    }

    /// Whether line mode and echo are restored.
    bool HasFormerModes() const {
        termios now{};
        return ::tcgetattr(master_, &now) == 0 && now.c_lflag == modes_.c_lflag;
    }

    std::string const& Output() const { return output_; }

private:
    static termios ModesOfANewTerminal() {
        termios modes{};
        int master = -1;
        int slave = -1;
        if (::openpty(&master, &slave, nullptr, nullptr, nullptr) == 0) {
            ::tcgetattr(slave, &modes);
            ::close(slave);
            ::close(master);
        }
        return modes;
    }

    bool ReadMore() {
        pollfd waiting{master_, POLLIN, 0};
        std::array<char, 4096> bytes{};
        ssize_t const count = ::poll(&waiting, 1, 20'000) == 1 ? ::read(master_, bytes.data(), bytes.size()) : -1;
        output_.append(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        return count > 0;
    }

    int master_ = -1;
    pid_t pid_ = -1;
    termios modes_{};
    std::string output_;
};

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HARVLINK_SANITIZER_NEEDS_DESCRIPTORS
#endif
#endif

TEST(OnTerminal, NamesWhatIsMissing) {
#ifdef HARVLINK_SANITIZER_NEEDS_DESCRIPTORS
    GTEST_SKIP() << "the sanitizer opens descriptors for its own checks";
#endif
    rlimit former{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &former), 0);
    rlimit const none{3, former.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_THROW(OnTerminal("watch", "xterm"), std::system_error);
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &former), 0);
    ::setenv("TMPDIR", "/proc", 1);
    EXPECT_THROW(test::ScratchFolder(), std::system_error);
    ::unsetenv("TMPDIR");
}

TEST_F(WatchTest, FollowsTheControllerAndTheWindow) {
    OnTerminal terminal("--timeout 90 --retries 1 watch --var B5 --interval 5", "xterm");
    ASSERT_TRUE(terminal.Shows("Pulses")) << terminal.Output();
    With([](ControllerModel& model) { model.variables.bytes[5] = 123; });
    EXPECT_TRUE(terminal.Shows("123"));
    terminal.Resize(6, 40);
    EXPECT_TRUE(terminal.Shows("more lines"));
    terminal.Resize(1, 1);
    terminal.Resize(30, 100);
    EXPECT_TRUE(terminal.Shows("only reads"));
    server_->Stop();
    EXPECT_TRUE(terminal.Shows("NO ANSWER"));
    With([](ControllerModel& model) { model.variables.bytes[5] = 206; });
    ASSERT_TRUE(server_->Start());
    EXPECT_TRUE(terminal.Shows("206"));
    terminal.Type('q');
    EXPECT_EQ(terminal.End(), 0);
    EXPECT_TRUE(terminal.IsClean());
    EXPECT_TRUE(terminal.HasFormerModes());
}

TEST_F(WatchTest, LeavesTheTerminalCleanOnEveryWayOut) {
    for (int const signal : {SIGINT, SIGTERM, SIGHUP}) {
        OnTerminal terminal("watch", "xterm");
        ASSERT_TRUE(terminal.Shows("Pulses"));
        terminal.Signal(signal);
        EXPECT_EQ(terminal.End(), 0) << signal;
        EXPECT_TRUE(terminal.IsClean()) << signal;
    }
    OnTerminal silent("--timeout 90 --retries 0 --host 127.9.9.9 watch", "xterm");
    EXPECT_EQ(silent.End(), 1);
    // ncurses leaks memory when it does not know the terminal.
    ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    OnTerminal strange("watch", "no-such-terminal");
    EXPECT_EQ(strange.End(), 2);
    for (OnTerminal const* const refused : {&silent, &strange}) {
        EXPECT_EQ(refused->Output().find("\x1b[?"), std::string::npos) << refused->Output();
        EXPECT_TRUE(refused->HasFormerModes());
    }
}

CellRow RowOf(std::string cell, FleetState link) {
    CellRow row;
    row.cell = std::move(cell);
    row.link = link;
    row.encoding = "utf-8";
    row.state.emplace();
    row.alarms.emplace();
    return row;
}

TEST(BoardLayout, RanksTheWorstFirstAndFitsEveryWindow) {
    using enum CellRow::Rank;
    std::vector<std::pair<CellRow, CellRow::Rank>> cases{
        {RowOf("fine", FleetState::Online), Fine},      {RowOf("late", FleetState::Late), Late},
        {RowOf("new", FleetState::Connecting), Late},   {RowOf("silent", FleetState::Silent), NoAnswer},
        {RowOf("gone", FleetState::Refused), NoAnswer}, {RowOf("hold", FleetState::Online), Hold},
        {RowOf("alarm", FleetState::Online), Alarm},    {RowOf("error\x1b[2J", FleetState::Late), Alarm}};
    cases[5].first.state->isProgramPendantHold = true;
    cases[6].first.alarms->alarms[1] = {4107, 3, "", "SHOCK"};
    cases[7].first.state->isErroring = true;
    std::vector<CellRow> rows;
    for (auto const& [row, rank] : cases) {
        EXPECT_EQ(row.HowBad(), rank) << row.cell;
        rows.push_back(row);
    }
    EXPECT_NE(PlainText(rows, 80).find("4107-3 SHOCK"), std::string::npos);
    for (std::size_t height = 0; height < 14; ++height) {
        for (std::size_t width = 0; width < 120; width += 13) {
            for (std::size_t chosen = 0; chosen < rows.size(); ++chosen) {
                std::vector<Line> const lines = LayOut(rows, {height, width}, chosen);
                ASSERT_EQ(lines.size(), width == 0 ? 0 : height);
                bool isShown = false;
                for (Line const& line : lines) {
                    std::size_t used = 0;
                    for (Span const& span : line) {
                        used += span.text.size();
                        isShown = isShown || (span.style == Style::Chosen && !span.text.empty());
                        EXPECT_EQ(span.text.find('\x1b'), std::string::npos);
                    }
                    EXPECT_LE(used, width);
                }
                EXPECT_TRUE(isShown || height < 4 || width == 0) << height << " x " << width;
            }
        }
    }
}

/// The controller of WatchTest, another one, and an address at which nobody answers.
class BoardTest : public WatchTest {
protected:
    BoardTest() {
        other_ = &others_.Add(test::NextLoopbackAddress());
        EXPECT_TRUE(others_.Start()) << others_.Error();
        test::WriteFile("config.toml", fmt::format("timeout = 200\nretries = 0\n[cell.press1]\nhost = \"{}\"\n"
                                                   "[cell.press2]\nhost = \"{}\"\n[cell.void]\nhost = \"{}\"\n",
                                                   host_, other_->Address(), test::NextLoopbackAddress()));
    }

    test::ScratchFolder folder_;
    simulator::Server others_;
    simulator::VirtualController* other_ = nullptr;
};

TEST_F(BoardTest, ShowsAllCellsOnce) {
    other_->With([](ControllerModel& model) { model.RaiseAlarm(4107, 3, "SHOCK"); });
    Result const text = RunTool("--config config.toml --all watch --once");
    EXPECT_EQ(text.exit, 1);
    EXPECT_TRUE(text.out.starts_with("3 controllers   1 without an answer   1 with an alarm   1 fine\n")) << text.out;
    std::size_t const gone = text.out.find("  void ");
    std::size_t const alarm = text.out.find("4107-3 SHOCK");
    EXPECT_LT(gone, alarm);
    EXPECT_LT(alarm, text.out.find("  press1 ")) << text.out;
    Result const json = RunTool("--config config.toml --cell press1 --cell press2 watch --once --json");
    EXPECT_EQ(json.exit, 0);
    Json const cells = Json::parse(json.out)["cells"];
    EXPECT_EQ(cells["press2"]["alarms"][0]["code"], 4107);
    EXPECT_EQ(cells["press1"]["link"], "online");
    EXPECT_EQ(cells["press1"]["state"]["mode"], "remote");
    Json const wrong = Json::parse(RunTool("--config config.toml --all watch --once --json --generation FS").out);
    EXPECT_EQ(wrong["cells"]["press1"]["problem"]["message"], "not of generation FS");
}

TEST_F(BoardTest, OpensOneAndGoesBack) {
    OnTerminal terminal("--config config.toml --all watch --interval 20 --var B5", "xterm");
    ASSERT_TRUE(terminal.Shows("327682")) << terminal.Output(); // nobody listens
    other_->With([](ControllerModel& model) { model.RaiseAlarm(4107, 3, "SHOCK"); });
    ASSERT_TRUE(terminal.Shows("SHOCK"));
    other_->With([](ControllerModel& model) { model.variables.bytes[5] = 231; });
    // Only differences are drawn, so each step looks for a text on a screen of another size, which is drawn anew.
    struct Step {
        std::string keys;
        unsigned short columns;
        char const* shows;
    };
    for (Step const& step : {Step{"jk\n", 90, "Backspace goes back"}, Step{"\x7f", 91, "Enter opens"},
                             Step{"j\n", 92, "231"}, Step{"\x1b", 93, "Enter opens"}}) {
        for (char const key : step.keys) {
            terminal.Type(key);
        }
        terminal.Resize(30, step.columns);
        ASSERT_TRUE(terminal.Shows(step.shows)) << step.shows << terminal.Output();
    }
    terminal.Type('q');
    EXPECT_EQ(terminal.End(), 0);
    EXPECT_TRUE(terminal.IsClean());
    EXPECT_TRUE(terminal.HasFormerModes());
}

} // namespace
} // namespace harvlink::cli
