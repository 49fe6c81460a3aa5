#include <cstdlib>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "gateway/sparkplug/Plant.h"

namespace harvlink::test {
namespace {

using namespace std::chrono_literals;
using gateway::sparkplug::SessionState;

bool IsBorn(gateway::sparkplug::EdgeNode const& node) {
    return node.Statistics().state == SessionState::Born;
}

TEST(SparkplugConnection, PlainTopicsAreJson) {
    Plant plant;
    plant.config.json = {.isOn = true, .topic = "cell", .qos = 1, .retain = true};
    auto node = plant.StartNode();
    auto const press =
        MakeController(1, "press1", {{recording::kind::State, "state"}, {recording::kind::RealVariable, "R001"}});
    node->Added(press);
    auto const sample = MakeSample(press, 1, {2.5}); // which its birth has, and which does not change
    Feed(*node, {sample}, {MakeStateEvent(press, FleetState::Online)});
    ASSERT_TRUE(Eventually([&] { return plant.host->IsBorn("press1"); }));
    Feed(*node, {MakeSample(press, 0, std::vector<recording::RecordedValue>(7, std::int64_t{1}))});
    auto const topics = [&] { return plant.host->PlainTopics(); };
    ASSERT_TRUE(Eventually([&] { return topics().contains("cell/gw1/press1/state"); }));
    EXPECT_EQ(topics()["cell/gw1/press1/online"], "true");
    auto const real = nlohmann::json::parse(topics()["cell/gw1/press1/R001"]);
    EXPECT_EQ(real, (nlohmann::json{{"timestamp", sample->moment.answer / 1000}, {"quality", "good"}, {"value", 2.5}}));
    EXPECT_EQ(nlohmann::json::parse(topics()["cell/gw1/press1/state"])["values"]["servo"], true);
    Feed(*node, {}, {MakeStateEvent(press, FleetState::Silent)});
    EXPECT_TRUE(Eventually([&] { return topics()["cell/gw1/press1/online"] == "false"; }));
    Feed(*node, {MakeSample(press, 1, {3.5}, 1000)}, {MakeStateEvent(press, FleetState::Online)});
    EXPECT_TRUE(Eventually([&] { return topics()["cell/gw1/press1/online"] == "true"; }));
    node.reset();
    EXPECT_TRUE(Eventually([&] { return topics()["cell/gw1/press1/online"] == "false"; })) << "it has left";
}

TEST(SparkplugConnection, NextBrokerIsUsedWhenOneIsAway) {
    Plant plant;
    plant.config.brokers.insert(plant.config.brokers.begin(), {NextLoopbackAddress(), 1883});
    auto const node = plant.StartNode();
    EXPECT_TRUE(Eventually([&] { return IsBorn(*node); }));
    EXPECT_EQ(node->Statistics().broker, plant.broker.Address());
    // An attempt that reached nobody used no number.
    EXPECT_EQ(ContentOf(plant.config.store.folder / "sparkplug-session"), "0\n");
}

/// A session that begins anew after a restart has the next number; a damaged file begins at 0.
TEST(SparkplugConnection, SessionNumberGoesOn) {
    Plant plant;
    for (char const* const expected : {"0\n", "1\n"}) {
        auto const node = plant.StartNode();
        EXPECT_TRUE(Eventually([&] { return IsBorn(*node); }));
        EXPECT_EQ(ContentOf(plant.config.store.folder / "sparkplug-session"), expected);
    }
    for (auto const& [content, expected] :
         {std::pair("255\n", "0\n"), std::pair("many\n", "0\n"), std::pair("300\n", "0\n")}) {
        WriteFile(plant.config.store.folder / "sparkplug-session", content);
        auto const node = plant.StartNode();
        EXPECT_TRUE(Eventually([&] { return IsBorn(*node); }));
        EXPECT_EQ(ContentOf(plant.config.store.folder / "sparkplug-session"), expected) << content;
    }
}

/// What was stored of a controller that does not answer any more arrives, and then it is dead.
TEST(SparkplugConnection, HistoryOfASilentControllerArrives) {
    Plant plant;
    plant.broker.Kill();
    auto const node = plant.StartNode();
    auto const press = MakeController(1, "press1", {{recording::kind::DoubleIntVariable, "D001"}});
    node->Added(press);
    Feed(*node, {MakeSample(press, 0, {std::int64_t{1}}), MakeSample(press, 0, {std::int64_t{2}}, 1000)},
         {MakeStateEvent(press, FleetState::Online)});
    Feed(*node, {}, {MakeStateEvent(press, FleetState::Silent)});
    plant.broker.Start();
    EXPECT_TRUE(Eventually([&] { return plant.host->HasAll("press1/D001", 2); }));
    EXPECT_TRUE(Eventually([&] { return !plant.host->IsBorn("press1") && node->Statistics().data.deaths == 1; }));
    EXPECT_EQ(plant.host->Faults(), std::vector<std::string>{});
}

/// What was read before a controller fell silent, and comes after its death was told, does not wait until it is back.
TEST(SparkplugConnection, LastWordsOfASilentControllerArrive) {
    Plant plant;
    auto const node = plant.StartNode();
    auto const press = MakeController(1, "press1", {{recording::kind::DoubleIntVariable, "D001"}});
    node->Added(press);
    Feed(*node, {MakeSample(press, 0, {std::int64_t{1}})}, {MakeStateEvent(press, FleetState::Online)});
    ASSERT_TRUE(Eventually([&] { return plant.host->IsBorn("press1"); }));
    auto const last = {MakeSample(press, 0, {std::int64_t{2}}, 1000), MakeSample(press, 0, {std::int64_t{3}}, 2000)};
    Feed(*node, {}, {MakeStateEvent(press, FleetState::Silent)});
    ASSERT_TRUE(Eventually([&] { return !plant.host->IsBorn("press1"); }));
    Feed(*node, last);
    EXPECT_TRUE(Eventually([&] { return plant.host->HasAll("press1/D001", 3) && !plant.host->IsBorn("press1"); }));
    EXPECT_EQ(plant.host->Faults(), std::vector<std::string>{});
}

/// A gateway is started, with values in its store, and births come before it has read anything.
TEST(SparkplugConnection, WhatWasStoredKeepsItsOrder) {
    Plant plant;
    plant.config.primaryHost.clear();
    plant.config.store.valuesPerSecond = 200; // slower than what is read now
    plant.broker.Kill();
    auto node = plant.StartNode();
    Series(*node).FeedMany(300);
    node.reset();
    plant.broker.Start();
    plant.host = std::make_unique<Host>(plant.broker.Address(), "scada");
    node = plant.StartNode();
    ASSERT_TRUE(Eventually([&] { return node->Statistics().state == gateway::sparkplug::SessionState::Born; }));
    Series later(*node, 301);
    later.FeedMany(5);
    EXPECT_TRUE(Eventually([&] { return plant.host->HasAll(Counter::Metric, later.Last()); }));
    EXPECT_EQ(plant.host->Faults(), std::vector<std::string>{});
}

/// A broker in the hall and one of the plant above it, where the host is.
TEST(SparkplugConnection, BrokersCanBeBridged) {
    Plant plant;
    Broker const hall(NextLoopbackAddress(),
                      fmt::format("connection hall-to-plant\naddress {}:1883\ncleansession false\n"
                                  "topic spBv1.0/Plant/+/gw1/# out 1\n"
                                  "topic spBv1.0/Plant/NCMD/gw1 in 1\ntopic spBv1.0/STATE/# in 1",
                                  plant.broker.Address()));
    plant.config.brokers = {{hall.Address(), 1883}};
    auto node = plant.StartNode();
    Counter counter(*node);
    EXPECT_TRUE(Eventually([&] { return plant.host->LiveValueOf(Counter::Metric) > 20; }));
    plant.host->Publish("spBv1.0/Plant/NCMD/gw1", std::string("\x12\x18\x0a\x14Node Control/Rebirth\x70\x01", 26));
    EXPECT_TRUE(Eventually([&] { return plant.host->NodeBirths() == 2; }));
    std::int64_t const last = counter.Stop();
    EXPECT_TRUE(Eventually([&] { return plant.host->HasAll(Counter::Metric, last); }));
    node.reset();
    EXPECT_TRUE(Eventually([&] { return !plant.host->IsBorn("press1"); }));
    EXPECT_EQ(plant.host->Faults(), std::vector<std::string>{});
}

TEST(SparkplugConnection, PasswordComesFromAFile) {
    ScratchFolder const folder;
    WriteFile(folder.Path() / "users", "");
    ASSERT_EQ(
        std::system(("mosquitto_passwd -b " + (folder.Path() / "users").string() + " gateway right 2>&1").c_str()), 0);
    Broker const broker(NextLoopbackAddress(), "password_file " + (folder.Path() / "users").string(), "false");
    gateway::MqttConfig config;
    config.brokers = {{broker.Address(), 1883}};
    config.group = config.node = "gw";
    config.user = "gateway";
    config.passwordFile = folder.Path() / "password";
    gateway::Log log([](auto, auto const& line) { EXPECT_EQ(line.find("right"), std::string::npos); });
    WriteFile(config.passwordFile, "right\n");
    EXPECT_TRUE(
        Eventually([node = std::make_shared<gateway::sparkplug::EdgeNode>(config, log)] { return IsBorn(*node); }));
    WriteFile(config.passwordFile, "wrong\n");
    gateway::sparkplug::EdgeNode const node(config, log);
    EXPECT_TRUE(Eventually([&] { return node.Statistics().lastError.find("not authorised") != std::string::npos; }))
        << node.Statistics().lastError;
    EXPECT_EQ(node.Statistics().state, SessionState::Waiting);
}

TEST(SparkplugConnection, TlsWithCertificatesOfBothSides) {
    ScratchFolder const folder;
    std::string const address = NextLoopbackAddress();
    std::string const make =
        fmt::format("(openssl req -x509 -newkey rsa:2048 -nodes -keyout ca.key -out ca.pem -subj /CN=ca -days 2 && "
                    "for name in broker client; do openssl req -newkey rsa:2048 -nodes -keyout $name.key -out "
                    "$name.csr -subj /CN={0} && "
                    "openssl x509 -req -in $name.csr -CA ca.pem -CAkey ca.key -CAcreateserial -out $name.pem -days 2 "
                    "-extfile <(echo subjectAltName=IP:{0}); done) >openssl.log 2>&1",
                    address);
    ASSERT_EQ(std::system(("bash -c '" + make + "'").c_str()), 0) << ContentOf("openssl.log");
    auto const path = [&](char const* name) { return (folder.Path() / name).string(); };
    Broker const broker(address, fmt::format("cafile {}\ncertfile {}\nkeyfile {}\nrequire_certificate true",
                                             path("ca.pem"), path("broker.pem"), path("broker.key")));
    gateway::MqttConfig config;
    config.brokers = {{address, 1883}};
    config.group = config.node = "gw";
    config.stateFolder = folder.Path();
    config.tls = {.isOn = true, .ca = path("ca.pem"), .certificate = path("client.pem"), .key = path("client.key")};
    // The library says it itself, without what to look at.
    gateway::Log log([](auto, auto const& line) { EXPECT_EQ(line.find("A TLS error occurred"), std::string::npos); });
    {
        gateway::sparkplug::EdgeNode const node(config, log);
        EXPECT_TRUE(Eventually([&] { return IsBorn(node); })) << node.Statistics().lastError;
    }
    config.tls.ca = path("client.pem"); // not the authority of the broker
    gateway::sparkplug::EdgeNode const node(config, log);
    EXPECT_TRUE(Eventually([&] { return node.Statistics().lastError.starts_with("TLS"); }))
        << node.Statistics().lastError;
}

} // namespace
} // namespace harvlink::test
