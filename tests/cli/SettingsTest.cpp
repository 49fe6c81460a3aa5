#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "ToolTest.h"
#include "cli/output/Output.h"
#include "support/ScratchFolder.h"

namespace harvlink::cli {
namespace {

/// Runs bash or zsh, and returns what it printed.
std::string RunShell(std::string const& command) {
    FILE* const pipe = ::popen(command.c_str(), "r");
    std::string text;
    for (int next = ::fgetc(pipe); next != EOF; next = ::fgetc(pipe)) {
        text += static_cast<char>(next);
    }
    ::pclose(pipe);
    return text;
}

class SettingsTest : public testing::Test {
protected:
    SettingsTest() {
        for (char const* const name : {"HARVLINK_HOST", "HARVLINK_TIMEOUT", "HARVLINK_RETRIES", "HARVLINK_CONFIG"}) {
            ::unsetenv(name);
        }
        ::setenv("XDG_CONFIG_HOME", folder_.Path().c_str(), 1);
        std::filesystem::create_directory("harvlink");
    }

    test::ScratchFolder const folder_;
};

TEST_F(SettingsTest, ComeFromOptionThenEnvironmentThenFile) {
    std::string const file = (folder_.Path() / "harvlink/config.toml").string();
    test::WriteFile(file, "# the cell\nhost = \"10.0.0.3\"\ntimeout = 300\nretries = 5\n");
    ::setenv("HARVLINK_HOST", "10.0.0.2", 1);
    ::setenv("HARVLINK_RETRIES", "", 1);
    Json const config = Json::parse(RunTool("config --json --timeout 100").out);
    EXPECT_EQ(config["file"], file);
    std::array<std::array<std::string, 3>, 5> const expected{{{"host", "\"10.0.0.2\"", "HARVLINK_HOST"},
                                                              {"timeout", "\"100\"", "--timeout"},
                                                              {"retries", "\"5\"", file + ":4"},
                                                              {"generation", "null", "built-in"},
                                                              {"encoding", "\"utf-8\"", "built-in"}}};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        Json const& setting = config["settings"][i];
        EXPECT_EQ(setting["setting"], expected.at(i)[0]);
        EXPECT_EQ(setting["value"].dump(), expected.at(i)[1]);
        EXPECT_EQ(setting["source"], expected.at(i)[2]);
    }
}

TEST_F(SettingsTest, NameTheSourceOfABadValue) {
    struct Case {
        char const* file;
        char const* variable; ///< of HARVLINK_TIMEOUT
        char const* options;
        char const* problem;
    };
    std::array<Case, 12> const cases{{
        {"host = \"1.2.3\"\n", "", "", "config.toml:1: '1.2.3' is not an IPv4 address"},
        {"host = \"127.1.2.010\"\n", "", "", "config.toml:1: '127.1.2.010' is not an IPv4 address"},
        {"\nhost = 5\n", "", "", "config.toml:2: host must be a text in quotes"},
        {"\nhost = 192.168.0.1\n", "", "", "config.toml:2: host must be a text in quotes, such as host = \"192"},
        {"generation = ya\n", "", "", "config.toml:1: generation must be a text in quotes"},
        {"timeout = \"5\"\n", "", "", "config.toml:1: timeout must be a whole number"},
        {"timeout = 5\nhots = \"1.2.3.4\"\n", "", "", "config.toml:2: there is no setting 'hots'; there are: host, "},
        {"timeout = 0\n", "", "", "config.toml:1: number of milliseconds 0 is out of range, from 1 to 600000"},
        {"timeout = \n", "", "", "config.toml:1: "},
        {"timeout = 5\n", "-1", "", "HARVLINK_TIMEOUT: '-1' is not a valid number of milliseconds"},
        {"", "", "--retries 1001", "--retries: number of retries 1001 is out of range"},
        {"", "", "--config nowhere.toml", "can't read nowhere.toml"},
    }};
    for (Case const& each : cases) {
        test::WriteFile("harvlink/config.toml", each.file);
        ::setenv("HARVLINK_TIMEOUT", each.variable, 1);
        Result const result = RunTool(fmt::format("config {}", each.options));
        EXPECT_EQ(result.exit, 2) << each.problem;
        EXPECT_NE(result.err.find(each.problem), std::string::npos) << result.err;
    }
}

TEST_F(SettingsTest, KnowCells) {
    std::string const file = (folder_.Path() / "harvlink/config.toml").string();
    test::WriteFile(file, "timeout = 300\n[cell.press1]\nhost = \"127.0.0.9\"\nretries = 7\n"
                          "[cell.\"weld 2\"]\nhost = \"weld2.plant\"\nencoding = \"cp932\"\n");
    ::setenv("HARVLINK_HOST", "10.0.0.2", 1);
    Json const config = Json::parse(RunTool("config --json --cell press1 --timeout 100").out);
    std::array<std::array<std::string, 2>, 3> const expected{
        {{"127.0.0.9", file + ":3"}, {"100", "--timeout"}, {"7", file + ":4"}}};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(config["settings"][i]["value"], expected.at(i)[0]) << "the named cell, not the environment";
        EXPECT_EQ(config["settings"][i]["source"], expected.at(i)[1]);
    }
    EXPECT_EQ(config["cells"][1], Json({{"cell", "weld 2"},
                                        {"host", "weld2.plant"},
                                        {"timeout", nullptr},
                                        {"retries", nullptr},
                                        {"generation", nullptr},
                                        {"encoding", "cp932"}}));
    struct Case {
        std::string file;
        char const* problem;
    };
    std::array<Case, 4> const cases{
        {{"[cell.press1]\nhost = \"10.0.0.1\"\n", "there is no cell 'pres1' in "},
         {"[cell.pres1]\ntimeout = 5\n", "config.toml:1: the cell pres1 has no host"},
         {"[cell.pres1]\nhost = \"bad host\"\n", "config.toml:2: 'bad host' is not an IPv4 address"},
         {"cell = 5\n", "config.toml:1: a cell is a section such as [cell.press1]"}}};
    for (Case const& each : cases) {
        test::WriteFile(file, each.file);
        Result const result = RunTool("--cell pres1 status");
        EXPECT_EQ(result.exit, 2) << each.problem;
        EXPECT_NE(result.err.find(each.problem), std::string::npos) << result.err;
    }
    test::WriteFile(file, cases[0].file);
    EXPECT_NE(RunTool("--cell pres1 status").err.find("; is press1 meant?"), std::string::npos);
}

TEST_F(SettingsTest, RefuseAControllerOfAnotherGeneration) {
    simulator::Server server;
    std::string const host = test::NextLoopbackAddress();
    server.Add(host);
    ASSERT_TRUE(server.Start()) << server.Error();
    EXPECT_EQ(RunTool("status --generation ya --host " + host).exit, 0);
    Result const result = RunTool("status --generation FS --host " + host);
    EXPECT_EQ(result.exit, 1);
    EXPECT_NE(result.err.find("not of generation FS"), std::string::npos) << result.err;
}

TEST_F(SettingsTest, CompleteInBashAndZsh) {
    test::WriteFile("bash", RunTool("completion bash").out + R"(
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)); _harvlink 2>/dev/null; [[ ${#COMPREPLY[@]} == 0 ]] || printf '%s ' "${COMPREPLY[@]}")");
    test::WriteFile("zsh", "compdef() {}\ncompadd() { for w in ${@:#--}; do [[ $w == ${words[CURRENT]}* ]] && printf "
                           "'%s ' $w; done }\n_files() { printf 'snapshot3 ' }\n" +
                               RunTool("completion zsh").out + "words=(\"$@\") CURRENT=$#; _harvlink");
    test::WriteFile("square.csv", "x,y,z,rx,ry,rz,speed\n");
    test::WriteFile("squares.csv", "variable,value\n");
    test::WriteFile("config", "[cell.press1]\nhost = \"127.0.0.1\"\n[cell.weld]\nhost = \"127.0.0.1\"\n");
    std::filesystem::create_directory("snapshot3");
    simulator::Server server;
    std::string const host = test::NextLoopbackAddress();
    server.Add(host);
    ASSERT_TRUE(server.Start()) << server.Error();
    std::string const programs = std::filesystem::path(HARVLINK_PROGRAM).parent_path().string();
    ::setenv("PATH", fmt::format("{}:{}", programs, ::getenv("PATH")).c_str(), 1);
    struct Case {
        std::string words;
        char const* completed;
    };
    std::array<Case, 16> const cases{{
        {"sta", "status start "},
        {"position R", "R1 R2 R3 R4 R5 R6 R7 R8 "},
        {"position --coordinate u", "user: "},
        {"--timeout 5 position --coo", "--coordinate "},
        {"alarms history --category sys", "system-user "},
        {"hold o", "on off "},
        {"trajectory run squ", "square.csv "},
        {"snapshot show sn", "snapshot3 "},
        {"snapshot show snapshot3 var", "variables "},
        {"--config config --cell pr", "press1 "},
        {"--config config --cell press1 --cell we", "weld "},
        {"status --al", "--all "},
        {fmt::format("--host {} job select DE", host), "DEMO "},
        {"--host 192.0.2.1 job select DE", ""},
        {"files get --for", "--force "},
        {"status --ho", "--host "},
    }};
    for (char const* const shell : {"bash", "zsh"}) {
        if (RunShell(fmt::format("command -v {}", shell)).empty()) {
            continue;
        }
        for (Case const& each : cases) {
            EXPECT_EQ(RunShell(fmt::format("{0} ./{0} harvlink {1}", shell, each.words)), each.completed)
                << shell << ": " << each.words;
        }
    }
}

TEST_F(SettingsTest, DoNotKeepAnyCommandFromShowingExamples) {
    std::string const script = RunTool("completion bash").out;
    std::string const start = " command=\"harvlink ";
    std::size_t commands = 0;
    for (std::size_t at = script.find(start); at != std::string::npos; at = script.find(start, at + 1)) {
        std::string command = script.substr(at + start.size());
        command.resize(command.find('"'));
        Result const help = RunTool(command + " --help");
        EXPECT_EQ(help.exit, 0) << command;
        EXPECT_NE(help.out.find("Example"), std::string::npos) << command;
        ++commands;
    }
    EXPECT_GT(commands, 50U);
}

} // namespace
} // namespace harvlink::cli
