#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "simulator/control/ControlCommands.h"
#include "simulator/control/ControlSocket.h"
#include "simulator/protocol/CommandName.h"
#include "simulator/scene/SceneError.h"
#include "support/LoopbackAddress.h"

namespace harvlink::simulator {
namespace {

using Words = std::vector<std::string>;

struct Control : testing::Test {
    ControllerOptions options{.timeScale = 0};
    VirtualController controller{"127.0.0.1", options};

    std::string Run(Words const& words) { return RunControlCommand(controller, options, words); }
};

TEST_F(Control, EachCommandActs) {
    struct Case {
        Words words;
        bool (*isSo)(ControllerModel const&);
    };
    for (auto const& [words, isSo] : std::initializer_list<Case>{
             {{"servo", "on"}, [](auto const& model) { return model.state.servoOn; }},
             {{"alarm", "4107", "3", "Out of range"},
              [](auto const& model) { return model.alarms.Active(1).code == 4107 && !model.state.servoOn; }},
             {{"reset"}, [](auto const& model) { return !model.alarms.IsActive(); }},
             {{"signal", "20010", "on"}, [](auto const& model) { return model.signals.Read(20010) == true; }},
             {{"signal", "20010", "0"}, [](auto const& model) { return model.signals.Read(20010) == false; }},
             {{"hold", "on"}, [](auto const& model) { return model.state.pendantHold; }},
             {{"hold", "off"}, [](auto const& model) { return !model.state.pendantHold; }},
             {{"mode", "teach"}, [](auto const& model) { return model.state.mode == Mode::Teach; }},
             {{"set", "variables.B.5 = 12\ncontroller.mode = 'play'"},
              [](auto const& model) { return model.variables.bytes[5] == 12 && model.state.mode == Mode::Play; }}}) {
        EXPECT_EQ(Run(words), "") << words[0];
        EXPECT_TRUE(controller.With(isSo)) << words[0];
    }
    Run({"fault", "drop", "2"});
    Run({"faults", "delay=100%"});
    EXPECT_EQ(controller.WithFaults([](auto const& faults) { return faults.Plan().rates[1]; }), 1.0);
    Run({"faults", "as-started"});
    EXPECT_EQ(controller.WithFaults([](auto const& faults) { return faults.Plan().rates[1]; }), 0.0);
    EXPECT_TRUE(controller.WithFaults([](auto const& faults) { return faults.IsActive(); })) << "armed";
    EXPECT_NE(Run({"show"}).find(R"("mode":"play","servo":false)"), std::string::npos) << Run({"show"});
}

TEST_F(Control, WhatIsWrongIsSaidAndChangesNothing) {
    for (auto const& [words, problem] : std::initializer_list<std::pair<Words, char const*>>{
             {{}, "'' is not a command; there are: alarm, reset"},
             {{"alarm"}, "usage: alarm CODE [SUBCODE] [NAME]"},
             {{"alarm", "0"}, "'0' is not an alarm code from 1 to 9999"},
             {{"alarm", "1", "2", std::string(33, 'x')}, "at most 32 bytes"},
             {{"reset", "all"}, "usage: reset"},
             {{"signal", "7", "on"}, "there is no signal 7"},
             {{"signal", "20010", "yes"}, "'yes' is not one of: off, on, 0, 1"},
             {{"mode", "auto"}, "'auto' is not one of: teach, play, remote"},
             {{"fault", "rain"}, "'rain' is not a fault; there are: drop"},
             {{"fault", "drop", "0"}, "'0' is not a number of requests"},
             {{"faults", "drop"}, "not of the form name=number"},
             {{"set", "controller.hold = true\nvariables.B.999 = 1"}, "set:2: variables.B.999"},
             {{"set", "controller.groups = ['R2']"}, "controller.groups: unknown key"},
             {{"set", "variables.EX.1 = 1"}, "variables.EX"}}) {
        try {
            Run(words);
            ADD_FAILURE() << problem;
        } catch (std::runtime_error const& error) {
            EXPECT_NE(std::string(error.what()).find(problem), std::string::npos) << error.what();
        }
    }
    EXPECT_FALSE(controller.With([](auto const& model) { return model.state.pendantHold || model.IsFaulted(); }));
}

TEST(ControlSocket, AnswersAndOutlastsAClientThatSaysNothing) {
    auto const address = test::NextLoopbackAddress();
    EXPECT_THROW(AskController(address, Words{"show"}), std::system_error);
    auto const server = ControlSocket::Listen(address);
    ASSERT_TRUE(server.IsOpen());
    EXPECT_FALSE(ControlSocket::Listen(address).IsOpen()) << "taken";
    auto const echo = [](std::span<std::string const> words) {
        return words.size() == 3 && words[1].empty() ? words[2] : throw std::runtime_error("no");
    };
    std::thread serving([&] {
        for (int i = 0; i < 3; ++i) {
            server.Serve(echo);
        }
    });
    Descriptor const silent(socket(AF_UNIX, SOCK_SEQPACKET, 0));
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    auto const text = "harvlink-sim/" + address;
    text.copy(&name.sun_path[1], text.size());
    auto const size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + text.size());
    EXPECT_EQ(connect(silent.Get(), reinterpret_cast<sockaddr const*>(&name), size), 0);
    auto const good = AskController(address, Words{"a", "", "b"});
    EXPECT_TRUE(good.isDone);
    EXPECT_EQ(good.text, "b");
    auto const bad = AskController(address, Words{"a"});
    EXPECT_FALSE(bad.isDone);
    EXPECT_EQ(bad.text, "no");
    serving.join();
}

TEST(CommandName, NamesCommandsAndServices) {
    EXPECT_EQ(NameOfCommand(122), "ByteVariable");
    EXPECT_EQ(NameOfCommand(1), "unknown");
    EXPECT_EQ(NameOfFileService(0x16), "SaveFile");
    EXPECT_EQ(NameOfFileService(1), "unknown");
}

} // namespace
} // namespace harvlink::simulator
