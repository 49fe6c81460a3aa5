#include "gateway/sparkplug/checklist/Life.h"

#include <cmath>
#include <sstream>

#include <fmt/format.h>

#include "gateway/sparkplug/Broker.h"
#include "gateway/sparkplug/Commands.h"
#include "gateway/sparkplug/EdgeNode.h"
#include "gateway/sparkplug/Feeder.h"
#include "gateway/sparkplug/Host.h"
#include "gateway/sparkplug/Tap.h"
#include "support/LoopbackAddress.h"
#include "support/ScratchFolder.h"

namespace harvlink::test {

namespace {

using gateway::MqttConfig;
using gateway::sparkplug::EdgeNode;
namespace kind = recording::kind;

MqttConfig ConfigAt(std::string const& address, ScratchFolder const& folder, std::string const& primaryHost) {
    MqttConfig config;
    config.brokers = {{address, Tap::Port}};
    config.group = "Plant";
    config.node = "gw1";
    config.primaryHost = primaryHost;
    config.stateFolder = folder.Path();
    return config;
}

Message MessageOf(MqttPacket const& packet) {
    std::vector<std::string> levels;
    std::istringstream stream(packet.topic);
    for (std::string level; std::getline(stream, level, '/');) {
        levels.push_back(level);
    }
    levels.resize(std::max<std::size_t>(5, levels.size()));
    Message message{.type = levels[2], .device = levels[4], .packet = packet, .payload = {}};
    message.isDecoded = message.payload.ParseFromString(packet.payload);
    return message;
}

Life LifeOf(Tap const& tap) {
    Life life{.packets = tap.Packets(), .messages = {}};
    for (MqttPacket const& packet : life.packets) {
        if (packet.isFromNode && packet.type == MqttPacket::Publish) {
            life.messages.push_back(MessageOf(packet));
        }
    }
    return life;
}

std::string Command(std::string_view name, bool value) {
    org::eclipse::tahu::protobuf::Payload payload;
    auto& metric = *payload.add_metrics();
    metric.set_name(std::string(name));
    metric.set_datatype(11);
    metric.set_boolean_value(value);
    return payload.SerializeAsString();
}

class Scene {
public:
    explicit Scene(std::string const& primaryHost)
        : broker(NextLoopbackAddress()), tap(broker.Address()), host(broker.Address(), "") {
        node = std::make_unique<EdgeNode>(ConfigAt(broker.Address(), folder, primaryHost), log);
        press = MakeController(1, "press1",
                               {{kind::State, "state"},
                                {kind::Position, "position R1 base"},
                                {kind::ByteVariable, "B005"},
                                {kind::RealVariable, "R001"},
                                {kind::StringVariable, "S001"}});
        node->Added(press);
        Feed(*node,
             {MakeSample(press, 1, std::vector<recording::RecordedValue>(12, 1.5)),
              MakeSample(press, 0, std::vector<recording::RecordedValue>(7, std::int64_t{1})),
              MakeSample(press, 3, {std::nan("")}), MakeSample(press, 4, {}, 0, recording::RecordedQuality::Refused)},
             {MakeStateEvent(press, FleetState::Online)});
    }

    std::size_t Count(int packetType) const {
        auto const packets = tap.Packets();
        return static_cast<std::size_t>(std::count_if(packets.begin(), packets.end(),
                                                      [&](auto const& packet) { return packet.type == packetType; }));
    }
    std::size_t Births() const { return LifeOf(tap).Of("NBIRTH").size(); }

    ScratchFolder folder;
    Broker broker;
    Tap tap;
    Host host;
    gateway::Log log{[](auto, auto const&) {}};
    std::unique_ptr<EdgeNode> node;
    ControllerPtr press;
};

void FeedPress(Scene& scene, std::int64_t value) {
    Feed(*scene.node, {MakeSample(scene.press, 2, {value})});
    EXPECT_TRUE(Eventually([&] { return scene.host.LiveValueOf("press1/B005") == value; }));
}

std::vector<ControllerPtr> AddSmallDevices(Scene& scene) {
    std::vector<ControllerPtr> small;
    for (int i = 0; i < SmallDevices; ++i) {
        small.push_back(MakeController(static_cast<std::uint32_t>(100 + i), fmt::format("d{:03}", i),
                                       {{kind::ByteVariable, "B000"}}));
        scene.node->Added(small.back());
        Feed(*scene.node, {MakeSample(small.back(), 0, {std::int64_t{1}})},
             {MakeStateEvent(small.back(), FleetState::Online)});
    }
    EXPECT_TRUE(Eventually([&] { return scene.host.IsBorn(small.back()->name); }));
    return small;
}

void RunThroughCommands(Scene& scene) {
    std::string const topic = "spBv1.0/Plant/NCMD/gw1";
    auto const before = scene.host.NodeBirths();
    scene.host.Publish(topic, Command("Node Control/Rebirth", false));
    scene.host.Publish(topic, Command("node control/rebirth", true));
    scene.host.Publish(topic, "\xff\xff nonsense");
    scene.host.Publish("spBv1.0/Plant/DCMD/gw1/press1", Command("Node Control/Rebirth", true));
    EXPECT_TRUE(Eventually([&] { return scene.node->Statistics().refusedCommands == 2; }));
    EXPECT_EQ(scene.host.NodeBirths(), before);
    scene.host.Publish(topic, Command("Node Control/Rebirth", true));
    scene.host.Publish(topic, Command("Node Control/Rebirth", true)); // too soon
    EXPECT_TRUE(Eventually([&] { return scene.node->Statistics().session.ignoredRebirths == 1; }));
    EXPECT_TRUE(Eventually([&] { return scene.host.NodeBirths() == before + 1 && scene.host.IsBorn("d129"); }));
}

/// Whether the node has told of so many controllers that answer.
bool HasTold(Scene const& scene, std::uint64_t online) {
    auto const messages = LifeOf(scene.tap).Of("NDATA");
    return std::any_of(messages.begin(), messages.end(), [&](Message const& message) {
        auto const& metrics = message.payload.metrics();
        return std::any_of(metrics.begin(), metrics.end(), [&](auto const& metric) {
            return metric.name() == "Gateway/Controllers Online" && metric.long_value() == online;
        });
    });
}

void LoseAndFindPress(Scene& scene) {
    Feed(*scene.node, {}, {MakeStateEvent(scene.press, FleetState::Silent)});
    EXPECT_TRUE(Eventually([&] { return !scene.host.IsBorn("press1") && HasTold(scene, SmallDevices); }));
    Feed(*scene.node, {MakeSample(scene.press, 2, {std::int64_t{9}})},
         {MakeStateEvent(scene.press, FleetState::Online)});
    EXPECT_TRUE(Eventually([&] { return scene.host.IsBorn("press1"); }));
}

Life LivePlainly() {
    Scene scene("");
    EXPECT_TRUE(Eventually([&] { return scene.host.IsBorn("press1"); }));
    auto const small = AddSmallDevices(scene);
    FeedPress(scene, 1);
    FeedPress(scene, 2);
    Feed(*scene.node, {MakeSample(scene.press, 2, {std::int64_t{2}})}); // no change, so nothing of it may leave
    for (ControllerPtr const& controller : small) {
        Feed(*scene.node, {MakeSample(controller, 0, {std::int64_t{2}})});
    }
    EXPECT_TRUE(Eventually([&] { return scene.host.LiveValueOf("d129/B000") == 2; }));
    RunThroughCommands(scene);
    FeedPress(scene, 3);
    LoseAndFindPress(scene);
    auto const births = scene.host.NodeBirths();
    scene.tap.Cut();
    EXPECT_TRUE(Eventually([&] { return scene.host.NodeBirths() > births && scene.host.IsBorn("d129"); }));
    FeedPress(scene, 4);
    scene.node.reset();
    EXPECT_TRUE(Eventually([&] { return scene.Count(MqttPacket::Disconnect) == 1; }));
    EXPECT_EQ(scene.host.Faults(), std::vector<std::string>{});
    return LifeOf(scene.tap);
}

HostedLife LiveWithHost() {
    using std::chrono::milliseconds;
    HostedLife hosted;
    Scene scene("scada");
    std::int64_t const now = UtcMicroseconds() / 1000;
    auto const say = [&](std::string const& host, bool isOnline, std::int64_t time) {
        scene.host.Publish("spBv1.0/STATE/" + host, fmt::format(R"({{"online":{},"timestamp":{}}})", isOnline, time), 1,
                           true);
        std::this_thread::sleep_for(milliseconds(200)); // that nothing follows can only be seen by waiting
    };
    EXPECT_TRUE(
        Eventually([&] { return scene.node->Statistics().state == gateway::sparkplug::SessionState::AwaitingHost; }));
    hosted.birthsBeforeHost = scene.Births();
    say("SCADA", true, now);
    hosted.birthsAfterOther = scene.Births();
    scene.host.Publish("spBv1.0/STATE/scada", "ONLINE");
    say("scada", false, now);
    hosted.birthsAfterOffline = scene.Births();
    say("scada", true, now - 1);
    hosted.birthsAfterOld = scene.Births();
    say("scada", true, now);
    EXPECT_TRUE(Eventually([&] { return scene.host.IsBorn("press1"); }));
    hosted.birthsAfterOnline = scene.Births();
    say("scada", false, now - 1);
    hosted.connectionsAfterOldOffline = scene.Count(MqttPacket::Connect);
    say("scada", false, now + 1);
    EXPECT_TRUE(Eventually([&] { return scene.Count(MqttPacket::Suback) == 4 && !scene.host.IsBorn("press1"); }));
    std::this_thread::sleep_for(milliseconds(200));
    hosted.connectionsAfterOffline = scene.Count(MqttPacket::Connect);
    hosted.birthsWhileOffline = scene.Births();
    say("scada", true, now + 2);
    EXPECT_TRUE(Eventually([&] { return scene.host.IsBorn("press1"); }));
    hosted.birthsAtTheEnd = scene.Births();
    scene.node.reset();
    EXPECT_TRUE(Eventually([&] { return scene.Count(MqttPacket::Disconnect) == 2; }));
    hosted.life = LifeOf(scene.tap);
    return hosted;
}

} // namespace

std::vector<Message> Life::Of(std::string_view type) const {
    std::vector<Message> found;
    for (Message const& message : messages) {
        if (message.type == type) {
            found.push_back(message);
        }
    }
    return found;
}

std::vector<MqttPacket> Life::Packets(int type) const {
    std::vector<MqttPacket> found;
    for (MqttPacket const& packet : packets) {
        if (packet.type == type) {
            found.push_back(packet);
        }
    }
    return found;
}

Life const& PlainLife() {
    static Life const life = LivePlainly();
    return life;
}

HostedLife const& LifeWithHost() {
    static HostedLife const life = LiveWithHost();
    return life;
}

} // namespace harvlink::test
