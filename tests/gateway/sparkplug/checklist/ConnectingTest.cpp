#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gateway/sparkplug/checklist/Checklist.h"

/// How the node connects: its session, its will and its subscription to commands.

namespace harvlink::test {
namespace {

auto Connects(std::function<void(MqttPacket const&)> check) {
    return [check = std::move(check)] {
        auto const packets = PlainLife().Packets(MqttPacket::Connect);
        EXPECT_EQ(packets.size(), 2U);
        std::for_each(packets.begin(), packets.end(), check);
    };
}

void WillCountsUp() {
    std::uint64_t expected = 0;
    for (MqttPacket const& packet : PlainLife().Packets(MqttPacket::Connect)) {
        EXPECT_EQ(SessionOf(packet.will), expected++);
    }
    EXPECT_EQ(PlainLife().Packets(MqttPacket::Connect).front().will, std::string("\x12\x0b\x0a\x05"
                                                                                 "bdSeq\x20\x04\x58\x00",
                                                                                 13));
}

void DeathsHaveOnlyTheSession() {
    std::map<std::size_t, std::uint64_t> sessions;
    for (Message const& message : MessagesOf({"NBIRTH", "NDEATH"})) {
        std::uint64_t const session =
            message.type == "NDEATH" ? SessionOf(message.packet.payload) : Find(message, "bdSeq")->long_value();
        EXPECT_EQ(sessions.emplace(message.packet.connection, session).first->second, session);
    }
    WillCountsUp();
}

void NodeBirthHasSession() {
    std::map<std::size_t, std::uint64_t> wills;
    for (MqttPacket const& packet : PlainLife().Packets(MqttPacket::Connect)) {
        wills[packet.connection] = SessionOf(packet.will);
    }
    ForEach({"NBIRTH"}, [&](Message const& message) {
        Metric const* const metric = Find(message, "bdSeq");
        ASSERT_NE(metric, nullptr);
        EXPECT_EQ(metric->datatype(), 4U);
        EXPECT_EQ(metric->long_value(), wills.at(message.packet.connection));
    });
}

void CommandsAreSubscribed() {
    Precedes(
        [](MqttPacket const& packet) {
            return packet.type == MqttPacket::Subscribe && packet.topic == "spBv1.0/Plant/NCMD/gw1" && packet.qos == 1;
        },
        IsMessage("NBIRTH"));
    Precedes(IsType(MqttPacket::Suback), IsMessage("NBIRTH"));
}

auto const HasWill = Connects([](MqttPacket const& packet) { EXPECT_TRUE(packet.hasWill); });
auto const WillQos = Connects([](MqttPacket const& packet) { EXPECT_EQ(packet.willQos, 1); });
auto const WillIsNotRetained = Connects([](MqttPacket const& packet) { EXPECT_FALSE(packet.willRetain); });
auto const WillTopic =
    Connects([](MqttPacket const& packet) { EXPECT_EQ(packet.willTopic, "spBv1.0/Plant/NDEATH/gw1"); });
auto const WillDecodes = Connects([](MqttPacket const& packet) { SessionOf(packet.will); });

std::vector<Assertion> const ConnectingAssertions{
    {"topics-ncmd-topic", CommandsAreSubscribed},
    {"principles-persistence-clean-session-311",
     Connects([](MqttPacket const& packet) { EXPECT_TRUE(packet.isClean); })},
    {"message-flow-edge-node-birth-publish-connect", [] { Precedes(IsType(MqttPacket::Connack), IsNodePublish); }},
    {"message-flow-edge-node-birth-publish-will-message", HasWill},
    {"message-flow-edge-node-birth-publish-will-message-topic", WillTopic},
    {"message-flow-edge-node-birth-publish-will-message-payload", WillDecodes},
    {"message-flow-edge-node-birth-publish-will-message-payload-bdSeq", WillCountsUp},
    {"message-flow-edge-node-birth-publish-will-message-qos", WillQos},
    {"message-flow-edge-node-birth-publish-will-message-will-retained", WillIsNotRetained},
    {"payloads-ndeath-will-message", HasWill},
    {"payloads-ndeath-will-message-qos", WillQos},
    {"payloads-ndeath-will-message-retain", WillIsNotRetained},
    {"payloads-ndeath-seq", DeathsHaveOnlyTheSession},
    {"topics-ndeath-seq", DeathsHaveOnlyTheSession},
    {"topics-ndeath-payload", DeathsHaveOnlyTheSession},
    {"payloads-ndeath-bdseq", DeathsHaveOnlyTheSession},
    {"message-flow-edge-node-ncmd-subscribe", CommandsAreSubscribed},
    {"message-flow-edge-node-birth-publish-nbirth-payload-bdSeq", NodeBirthHasSession},
    {"topics-nbirth-bdseq-included", NodeBirthHasSession},
    {"topics-nbirth-bdseq-matching", NodeBirthHasSession},
    {"topics-nbirth-bdseq-increment", WillCountsUp},
    {"payloads-nbirth-bdseq", NodeBirthHasSession},
};

INSTANTIATE_TEST_SUITE_P(Connecting, SparkplugChecklist, testing::ValuesIn(ConnectingAssertions), NameOf);

} // namespace
} // namespace harvlink::test
