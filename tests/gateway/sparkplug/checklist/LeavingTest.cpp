#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "gateway/sparkplug/checklist/Checklist.h"

/// Devices die when they fall silent, and the node waits for its primary host and leaves with it.

namespace harvlink::test {
namespace {

void LostDeviceDies() {
    auto const deaths = PlainLife().Of("DDEATH");
    ASSERT_EQ(deaths.size(), 1U);
    EXPECT_EQ(deaths.front().device, "press1");
    EXPECT_EQ(deaths.front().payload.metrics_size(), 0);
}

void DeathPrecedesDisconnect() {
    auto const messages = PlainLife().messages;
    EXPECT_EQ(messages.back().type, "NDEATH");
    EXPECT_EQ(PlainLife().Of("NDEATH").size(), 1U);
    auto const& packets = PlainLife().packets;
    EXPECT_EQ(packets.back().type, MqttPacket::Disconnect);
    EXPECT_EQ(packets[packets.size() - 2].type, MqttPacket::Puback);
}

void WaitsForHost() {
    HostedLife const& hosted = LifeWithHost();
    EXPECT_EQ(hosted.birthsBeforeHost, 0U);
    EXPECT_EQ(hosted.birthsAfterOther, 0U);
    EXPECT_EQ(hosted.birthsAfterOffline, 0U);
    EXPECT_EQ(hosted.birthsAfterOld, 0U);
    EXPECT_EQ(hosted.birthsAfterOnline, 1U);
}

void LeavesWithHost() {
    HostedLife const& hosted = LifeWithHost();
    EXPECT_EQ(hosted.connectionsAfterOffline, 2U);
    EXPECT_EQ(hosted.birthsWhileOffline, 1U);
    EXPECT_EQ(hosted.birthsAtTheEnd, 2U);
    auto const deaths = hosted.life.Of("NDEATH");
    ASSERT_EQ(deaths.size(), 2U); // for the host that went, and at the end
    EXPECT_EQ(SessionOf(deaths.front().packet.payload), 0U);
    EXPECT_EQ(hosted.life.Packets(MqttPacket::Disconnect).size(), 2U);
}

void StaysWhenOfflineIsOld() {
    EXPECT_EQ(LifeWithHost().connectionsAfterOldOffline, 1U);
}

void StateIsSubscribed() {
    auto const packets = LifeWithHost().life.Packets(MqttPacket::Subscribe);
    EXPECT_TRUE(std::any_of(packets.begin(), packets.end(),
                            [](MqttPacket const& packet) { return packet.topic == "spBv1.0/STATE/scada"; }));
}

/// A connection begins when the one before it has said goodbye.
void OneServerAtATime() {
    std::size_t open = 0;
    for (MqttPacket const& packet : LifeWithHost().life.packets) {
        open += packet.type == MqttPacket::Connect ? 1 : 0;
        EXPECT_LE(open, 1U);
        open -= packet.type == MqttPacket::Disconnect ? 1 : 0;
    }
}

std::vector<Assertion> const LeavingAssertions{
    {"operational-behavior-device-ddeath", LostDeviceDies},
    {"operational-behavior-edge-node-intentional-disconnect-ndeath", DeathPrecedesDisconnect},
    {"operational-behavior-edge-node-intentional-disconnect-packet", DeathPrecedesDisconnect},
    {"payloads-ndeath-will-message-publisher", DeathPrecedesDisconnect},
    {"payloads-ndeath-will-message-publisher-disconnect-mqtt311", DeathPrecedesDisconnect},
    {"message-flow-edge-node-birth-publish-phid-wait", WaitsForHost},
    {"message-flow-edge-node-birth-publish-phid-wait-id", WaitsForHost},
    {"message-flow-edge-node-birth-publish-phid-wait-online", WaitsForHost},
    {"message-flow-edge-node-birth-publish-phid-wait-timestamp", WaitsForHost},
    {"message-flow-edge-node-birth-publish-phid-offline", LeavesWithHost},
    {"operational-behavior-edge-node-birth-sequence-wait", WaitsForHost},
    {"operational-behavior-edge-node-termination-host-offline", LeavesWithHost},
    {"operational-behavior-edge-node-termination-host-offline-reconnect", LeavesWithHost},
    {"operational-behavior-edge-node-termination-host-offline-timestamp", StaysWhenOfflineIsOld},
    {"operational-behavior-primary-application-state-with-multiple-servers-state-subs", StateIsSubscribed},
    {"operational-behavior-primary-application-state-with-multiple-servers-single-server", OneServerAtATime},
};

INSTANTIATE_TEST_SUITE_P(Leaving, SparkplugChecklist, testing::ValuesIn(LeavingAssertions), NameOf);

} // namespace
} // namespace harvlink::test
