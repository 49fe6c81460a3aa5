#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gateway/config/ConfigFile.h"
#include "gateway/config/ItemText.h"
#include "gateway/program/Bill.h"
#include "support/Printed.h"
#include "support/ScratchFolder.h"
#include "words/text/InputError.h"

namespace harvlink::gateway {
namespace {

constexpr char const* Poll = "[poll.p]\nperiod = \"1s\"\nitems = [\"state\"]\n";
constexpr char const* Press = "[[controller]]\nname = \"press\"\nhost = \"10.0.0.1\"\npoll = \"p\"\n";

std::string ProblemsOf(std::string const& text) {
    try {
        ParseConfig(text, "plant.toml");
    } catch (ConfigError const& error) {
        std::string all;
        for (std::string const& problem : error.Problems()) {
            all += problem + "\n";
        }
        return all;
    }
    return "";
}

TEST(ConfigTest, ReadsItemsInTheWordsOfTheLibrary) {
    // What the library writes, it reads back.
    for (char const* const text :
         {"state", "alarms", "job 0", "position R1 base", "position R2 pulse axis 2", "torque R1", "torque B1 axis 0",
          "position error S1", "B005", "B000 x 10", "R012", "EX003", "signal 10010", "signal 10010 x 8",
          "signal group 10010", "register 3", "register 3 x 5", "software 11", "progress 1"}) {
        EXPECT_EQ(test::Printed(ParseItem(text)), text);
    }
    for (auto const& [text, printed] : {std::pair{"b0..b9", "B000 x 10"},
                                        {"SIGNAL 10010..10021", "signal 10010 x 10"},
                                        {"register 3..7", "register 3 x 5"},
                                        {"job", "job 0"}}) {
        EXPECT_EQ(test::Printed(ParseItem(text)), printed);
    }
    EXPECT_EQ(ParseItem("position R1 user:3 tool 2").userCoordinateNumber, 3);
    EXPECT_EQ(ParseItem("position R1 user:3 tool 2").toolNumber, 2);
    for (char const* const text :
         {"", "stat", "position", "position R9 base", "B", "B5..B3", "register -1", "state axis",
          "signal general-output:1.0", "torque R1 axis x", "state B5", "B0 x 70000"}) {
        EXPECT_THROW(ParseItem(text), words::InputError) << text;
    }
}

TEST(ConfigTest, SpreadsRanges) {
    auto const config = ParseConfig(
        std::string(Poll) + "[[controller]]\nname = \"weld{n}\"\nhost = \"10.0.3.[09-11]\"\npoll = [\"p\"]\n"
                            "[[controller]]\nname = \"cell-{n}\"\nhost = \"cell[1-2].plant\"\npoll = [\"p\"]\n",
        "plant.toml");
    std::string all;
    for (ControllerConfig const& controller : config.controllers) {
        all += controller.name + "=" + controller.options.address + " ";
    }
    EXPECT_EQ(all, "weld09=10.0.3.9 weld10=10.0.3.10 weld11=10.0.3.11 cell-1=cell1.plant cell-2=cell2.plant ");
    EXPECT_NE(BillOf(config).find("5 controllers, 5.0 exchanges a second"), std::string::npos) << BillOf(config);
}

struct WrongFile {
    char const* text;
    std::vector<char const*> problems; ///< each with its line
};

TEST(ConfigTest, NamesFileLineAndKeyOfAllThatIsWrong) {
    std::vector<WrongFile> const files{
        {"x = \n", {"plant.toml:1: "}},
        {"[gateway]\nnam = \"a\"\nlisten = \"host\"\nlog_level = \"loud\"\n",
         {"plant.toml:2: [gateway] nam: there is no such key; is name meant?",
          "plant.toml:3: [gateway] listen: ", "plant.toml:4: [gateway] log_level: 'loud' is not a level of the log"}},
        {"[gateway]\nlisten = \"0.0.0.0:80\"\n", {"plant.toml:2: [gateway] listen: others can reach this address"}},
        {"[gateway]\ntls_key = \"/no/such\"\n", {"TLS takes both", "plant.toml:2: [gateway] tls_key: can't read"}},
        {"[poll.p]\nperiod = \"0ms\"\nitems = [\"state\", \"foo\", 3]\ndead_band = 1.0\n",
         {"plant.toml:2: [poll.p] period: 0ms is out of range", "plant.toml:3: [poll.p] items: 'foo' is not an item",
          "plant.toml:3: [poll.p] items: each entry must be a text",
          "plant.toml:4: [poll.p] dead_band: takes on_change"}},
        {"[[controller]]\nname = \"a/b\"\nhost = \"10.0.0.300\"\npoll = [\"p\"]\ntimeout = 0\nlanes = \"2\"\n",
         {"plant.toml:2: [[controller]] name: 'a/b' is not a name", "plant.toml:5: [[controller]] timeout: 0 is out",
          "plant.toml:6: [[controller]] lanes: must be a whole number"}},
        {"[[controller]]\nname = \"press{n}\"\nhost = \"10.0.0.1\"\npoll = [\"p\"]\n",
         {
             "plant.toml:3: [[controller]] host: the name has {n}",
         }},
        {"[mqtt]\nbroker = \"b:0\"\ngroup = \"a+b\"\nkeep_alive = \"1s\"\n[mqtt.store]\nmax_size = \"1K\"\n",
         {"plant.toml:2: [mqtt] broker: ", "plant.toml:3: [mqtt] group: 'a+b' is not an id",
          "plant.toml:4: [mqtt] keep_alive: 1s is out", "plant.toml:5: [mqtt.store] folder: is missing",
          "plant.toml:6: [mqtt.store] max_size: 1K is less"}},
        {"[gateway]\nhosts = [\"a b\"]\n[mqtt]\nbroker = []\ngroup = \"g\"\n[mqtt.json]\ntopic = \"spBv1.0\"\n",
         {"plant.toml:2: [gateway] hosts: 'a b' is not", "plant.toml:4: [mqtt] broker: has no broker",
          "plant.toml:7: [mqtt.json] topic: 'spBv1.0' belongs"}},
        {"[recording]\nkeep = \"a\"\n[recording.incidents]\nfolder = \"x\"\non = [\"boom\"]\n",
         {"plant.toml:2: [recording] keep: ", "plant.toml:5: [recording.incidents] on: 'boom' is not one of"}},
        // What is wrong hides nothing else, and all comes in the order of the lines.
        {"[gateway]\nnam = 1\ntoken_file = \"/dev/null\"\n[poll.p]\nperiod = \"1s\"\nitems = [\"signal 1\"]\n"
         "[[controller]]\nhost = \"10.0.0.[5-1]\"\npoll = \"q\"\n[[controller]]\nname = \"a\"\nhost = \"10.0.0.1\"\n"
         "poll = \"p\"\n[promtheus]\n",
         {"plant.toml:2: [gateway] nam", "plant.toml:3: [gateway] token_file: ",
          "plant.toml:6: [poll.p] items: item \"signal 1\": ", "plant.toml:7: [[controller]] name: is missing",
          "plant.toml:8: [[controller]] host: the range",
          "plant.toml:9: [[controller]] poll: there is no section [poll.q]",
          "plant.toml:14: promtheus: there is no such key; is prometheus meant?"}},
        {"", {"plant.toml: there is no [[controller]]"}}};
    for (WrongFile const& file : files) {
        std::string const problems = ProblemsOf(file.text);
        std::size_t place = 0;
        for (char const* const problem : file.problems) {
            place = problems.find(problem, std::min(place, problems.size()));
            EXPECT_NE(place, std::string::npos) << problem << " is not there, or not in its order, in\n" << problems;
        }
    }
    std::string const twice = std::string(Poll) + Press + Press;
    EXPECT_NE(ProblemsOf(twice).find("plant.toml:9: [[controller]] name: there are two controllers"), std::string::npos)
        << ProblemsOf(twice);
    test::ScratchFolder const folder;
    std::ofstream(folder.Path() / "token") << "secret\n";
    EXPECT_NE(
        ProblemsOf("[gateway]\ntoken_file = \"" + (folder.Path() / "token").string() + "\"\n").find("16 characters"),
        std::string::npos);
    // Only the fleet knows what a generation does not have.
    std::string const old =
        "[poll.p]\nperiod = \"1s\"\nitems = [\"progress 0\"]\n" + std::string(Press) + "generation = \"FS\"\n";
    EXPECT_NE(ProblemsOf(old).find("[[controller]] poll: "), std::string::npos) << ProblemsOf(old);
}

TEST(ConfigTest, ReadsBrokersByNameAndAddress) {
    for (auto const& [text, read] : {std::pair{"broker", "broker 1883"},
                                     {"10.0.0.5:8883", "10.0.0.5 8883"},
                                     {"[fd00::5]", "fd00::5 1883"},
                                     {"[::1]:1884", "::1 1884"},
                                     {"::1", nullptr},
                                     {"[::1", nullptr},
                                     {"[::1]1883", nullptr},
                                     {"[broker]:1883", nullptr},
                                     {"broker:", nullptr},
                                     {"", nullptr},
                                     {"a:b:1883", nullptr}}) {
        std::string const file = std::string(Poll) + Press + "[mqtt]\ngroup = \"g\"\nbroker = \"" + text + "\"\n";
        std::string const problems = ProblemsOf(file);
        EXPECT_EQ(problems.empty(), read != nullptr) << text << ": " << problems;
        if (problems.empty() && read != nullptr) {
            MqttBroker const broker = ParseConfig(file, "plant.toml").mqtt->brokers.front();
            EXPECT_EQ(broker.host + " " + std::to_string(broker.port), read);
        }
    }
}

TEST(ConfigTest, ADeadBandIsForAllThatAreNumbers) {
    auto const config =
        ParseConfig("[poll.p]\nperiod = \"1s\"\non_change = true\ndead_band = 2\n"
                    "items = [\"state\", \"register 3\", \"I0\", \"P1\", \"torque R1\", \"signal group 10010\"]\n" +
                        std::string(Press),
                    "plant.toml");
    std::string bands;
    for (FleetItem const& item : config.polls.front().group.items) {
        bands += item.deadBand > 0.0 ? "yes " : "no ";
    }
    EXPECT_EQ(bands, "no yes yes yes yes no ");
}

TEST(ConfigTest, TakesItsOwnExampleWithEverythingSwitchedOn) {
    EXPECT_EQ(ParseConfig(ExampleConfig(), "plant.toml").controllers.size(), 61U);
    // All that is commented out is right, too. Files that it names are not there.
    std::string all;
    std::string_view rest = ExampleConfig();
    while (!rest.empty()) {
        std::string line(rest.substr(0, rest.find('\n')));
        rest.remove_prefix(line.size() + 1);
        bool const isSetting =
            line.starts_with("# [") || (line.starts_with("# ") && line.find(" = ") != std::string::npos);
        all += (isSetting ? line.substr(2) : line) + "\n";
    }
    for (std::string const key : {"tls_", "token_file", "ca =", "certificate", "key =", "password_file"}) {
        for (std::size_t at = all.find("\n" + key); at != std::string::npos; at = all.find("\n" + key)) {
            all.insert(at + 1, "#");
        }
    }
    EXPECT_EQ(ProblemsOf(all), "");
}

} // namespace
} // namespace harvlink::gateway
