#include "simulator/scene/Scene.h"

#include <gtest/gtest.h>

#include "support/VirtualClient.h"

namespace harvlink::test {
namespace {

using namespace simulator;

TEST(Scene, ExampleSetsWhatItSays) {
    auto const scene = Scene::FromFile(HARVLINK_SCENES "/example.toml");
    VirtualClient client(scene.Options());
    client.controller.WithParts([&](ControllerParts& parts) { scene.ApplyTo(parts); });
    EXPECT_EQ(client.Ask(122, 5, 1, 14).payload, U8(255));
    EXPECT_EQ(client.Ask(125, 10, 1, 14).payload, U32(0x40200000));
    EXPECT_EQ(client.Ask(140, 4, 1, 14).payload, Text("hello"));
    EXPECT_EQ(client.Ask(127, 2, 0, 1).payload, Words({16, 4, 1, 0, 0, 1200500, 0, 800000, 1800000, 0, 0, 0, 0}));
    EXPECT_EQ(client.Ask(128, 0, 0, 1).payload, Words({16, 250000, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(client.Ask(120, 2701, 1, 14).payload, U8(0x08));
    EXPECT_EQ(client.Ask(121, 5, 1, 14).payload, U16(1234));
    EXPECT_EQ(client.Ask(924, 0, 0, 1, Words({11, 0, 35})).payload, U32(17));
    EXPECT_EQ(client.Ask(113, 1001, 0, 1).payload[0], 4107 % 256);
    EXPECT_EQ(client.Ask(112, 1, 0, 1).payload[0], 0);
    client.controller.WithParts([](ControllerParts& parts) {
        EXPECT_TRUE(parts.model.frames.users[1].isDefined);
        EXPECT_NE(parts.files.Read("NOTES.DAT"), nullptr);
    });
}

TEST(Scene, NamesFileLineAndKeyOfAnError) {
    struct Case {
        std::string text, message;
    };
    for (auto const& [text, message] : std::vector<Case>{
             {"a =", "cell.toml:1: "},
             {"\nfoo = 1", "cell.toml:2: foo: unknown key"},
             {"[controller]\ngeneration = \"ZZ\"", "cell.toml:2: controller.generation: "},
             {"[controller]\ngroups = [\"R1\", \"R9\"]", "cell.toml:2: controller.groups[1]: "},
             {"[controller]\nmode = \"teach\"\nservo = true", "cell.toml:3: controller.servo: "},
             {"[controller]\ngeneration = \"fs\"\n[variables.B]\n100 = 1", "cell.toml:4: variables.B.100: "},
             {"[controller]\ntime_scale = nan",
              "cell.toml:2: controller.time_scale: must be a number from 0.001 to 10000"},
             {"[variables.B]\n1 = 256", "cell.toml:2: variables.B.1: must be a whole number from 0 to 255"},
             {"[variables.I]\n1 = 2.5", "cell.toml:2: variables.I.1: "},
             {"[variables.S]\n1 = \"012345678901234567890123456789012\"", "cell.toml:2: variables.S.1: "},
             {"[variables.P]\n1 = { type = \"pulse\" }", "cell.toml:2: variables.P.1: needs the key 'axes'"},
             {"[variables.P]\n1 = { type = \"base\", axes = [0, 3e6] }", "cell.toml:2: variables.P.1.axes[1]: "},
             {"[signals]\n10018 = true", "cell.toml:2: signals.10018: "},
             {"[signal_groups]\n513 = 1", "cell.toml:2: signal_groups.513: "},
             {"[[parameters]]\ntype = \"S1C\"\nnumber = 1\nvalue = 1",
              "cell.toml:1: parameters[0]: needs the key 'group'"},
             {"[variables.P]\n1 = { type = \"pulse\", axes = [1.5] }",
              "cell.toml:2: variables.P.1.axes[0]: must be a whole"},
             {"[controller]\ngroups = [\"R1\", \"R1:6\"]", "cell.toml:2: controller.groups[1]: is already in the list"},
             {"[controller]\ngroups = []", "cell.toml:2: controller.groups: must name at least one"},
             {"[tools]\n64 = { pose = [0, 0, 0, 0, 0, 0] }", "cell.toml:2: tools.64: "},
             {"[faults]\ndrop = 1.5", "cell.toml:2: faults.drop: drop must be from 0 to 1"}}) {
        try {
            Scene::FromText(text, "cell.toml");
            ADD_FAILURE() << "accepted: " << text;
        } catch (SceneError const& error) {
            EXPECT_TRUE(std::string_view(error.what()).starts_with(message)) << error.what();
        }
    }
}

} // namespace
} // namespace harvlink::test
