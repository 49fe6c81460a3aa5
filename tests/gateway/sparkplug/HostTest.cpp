#include <cmath>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "gateway/sparkplug/Plant.h"

namespace harvlink::test {
namespace {

/// A host by others, with a decoder by others, makes of the messages what was put into them.
TEST(SparkplugHost, IndependentHostUnderstandsEverything) {
    if (!std::filesystem::exists(HARVLINK_SPARKPLUG_HOST "/node_modules")) {
        GTEST_SKIP() << "script/setup test installs the packages of tests/gateway/sparkplug/host";
    }
    Plant plant;
    plant.config.primaryHost.clear();
    auto node = plant.StartNode();
    Counter counter(*node);
    auto const arm = MakeController(2, "arm",
                                    {{recording::kind::State, "state"},
                                     {recording::kind::Position, "position R1 base"},
                                     {recording::kind::StringVariable, "S001"},
                                     {recording::kind::ByteVariable, "B005"}});
    node->Added(arm);
    std::vector<recording::RecordedValue> position(8, -0.5);
    position.resize(12, std::int64_t{0}); // coordinate, tool, user, figure
    Feed(*node,
         {MakeSample(arm, 0, std::vector<recording::RecordedValue>(7, std::int64_t{1})), MakeSample(arm, 1, position),
          MakeSample(arm, 2, {std::string("sp\xffot")})},
         {MakeStateEvent(arm, FleetState::Online)});
    ASSERT_TRUE(Eventually([&] { return plant.host->IsBorn("arm"); }));
    Program host(
        fmt::format("node {}/host.js {} Plant gw1 press1 D001 2>&1", HARVLINK_SPARKPLUG_HOST, plant.broker.Address()));
    ASSERT_EQ(host.ReadLine(), "ready\n");
    ASSERT_TRUE(Eventually([&] { return plant.host->NodeBirths() == 2; })) << "it asked to be born again";
    ASSERT_TRUE(
        Eventually([&, from = counter.Last()] { return plant.host->LiveValueOf(Counter::Metric) > from + 50; }));
    std::int64_t const last = counter.Stop();
    node.reset();
    auto const seen = nlohmann::json::parse(host.ReadRest());
    EXPECT_EQ(seen["faults"], nlohmann::json::array());
    EXPECT_EQ(seen["births"], 1);
    EXPECT_EQ(seen["deviceBirths"], 2);
    EXPECT_EQ(seen["deaths"], 1);
    EXPECT_EQ(seen["nulls"], nlohmann::json::array({"B005"}));
    nlohmann::json const types{{"state/servo", "Boolean"},
                               {"position R1 base/x", "Double"},
                               {"S001", "String"},
                               {"B005", "Int64"},
                               {"D001", "Int64"}};
    for (auto const& [name, type] : types.items()) {
        EXPECT_EQ(seen["types"][name], type) << name;
    }
    auto const values = seen["values"].get<std::vector<std::int64_t>>();
    ASSERT_FALSE(values.empty());
    for (std::int64_t value = values.front(); value <= last; ++value) {
        EXPECT_NE(std::find(values.begin(), values.end(), value), values.end()) << value;
    }
}

} // namespace
} // namespace harvlink::test
