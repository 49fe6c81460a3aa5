#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gateway/sparkplug/Ids.h"
#include "gateway/sparkplug/Topics.h"
#include "gateway/sparkplug/checklist/Checklist.h"

/// Ids are legal and unique, and every topic has the form that belongs to its type.

namespace harvlink::test {
namespace {

void IdsAreLegal() {
    for (char const* const id :
         {"a+b", "a/b", "a#b", "", "\xff", "\xed\xa0\x80", "a\x01", "a\x7f", "a\xc2\x80", "\xef\xbf\xbf"}) {
        EXPECT_NE(gateway::sparkplug::ProblemOfId(id), "") << id;
    }
    for (char const* const id : {"Plant", "gw 1",
                                 "Pre\xc3\x9f"
                                 "e",
                                 "\xf0\x9f\xa4\x96"}) {
        EXPECT_EQ(gateway::sparkplug::ProblemOfId(id), "");
    }
    for (char const* const name : {"a/b", "a+b#", "\xff", "press1"}) {
        EXPECT_EQ(gateway::sparkplug::ProblemOfId(gateway::sparkplug::DeviceIdOf(name)), "");
    }
}

/// Two nodes of the same pair of ids get the same client id, of which a broker holds one connection.
void DescriptorIsUnique() {
    for (MqttPacket const& packet : PlainLife().Packets(MqttPacket::Connect)) {
        EXPECT_EQ(packet.client, "harvlink-Plant-gw1");
    }
}

void DeviceIdsDiffer() {
    std::map<std::string, std::set<std::string>> aliases;
    ForEach({"DBIRTH"}, [&](Message const& message) {
        for (Metric const& metric : message.payload.metrics()) {
            aliases[message.device].insert(std::to_string(metric.alias()));
        }
    });
    EXPECT_EQ(aliases.size(), 1U + SmallDevices);
    EXPECT_NE(gateway::sparkplug::DeviceIdOf("a/b"), gateway::sparkplug::DeviceIdOf("a+b"));
}

void DeviceIdMayRecur() {
    gateway::sparkplug::Topics const other("Plant", "gw2");
    EXPECT_EQ(other.Of(gateway::sparkplug::MessageType::DeviceBirth, "press1"), "spBv1.0/Plant/DBIRTH/gw2/press1");
}

void TopicsHaveTheForm() {
    std::set<std::string> const nodeTypes{"NBIRTH", "NDATA", "NDEATH"};
    std::set<std::string> const deviceTypes{"DBIRTH", "DDATA", "DDEATH"};
    for (Message const& message : PlainLife().messages) {
        bool const isNode = nodeTypes.contains(message.type);
        EXPECT_TRUE(isNode || deviceTypes.contains(message.type)) << message.packet.topic;
        EXPECT_EQ(message.packet.topic,
                  "spBv1.0/Plant/" + message.type + "/gw1" + (isNode ? "" : "/" + message.device));
        EXPECT_EQ(message.device.empty(), isNode);
    }
}

auto TopicIs(std::string type, std::string topic) {
    return [=] {
        auto const messages = MessagesOf({type});
        EXPECT_TRUE(std::any_of(messages.begin(), messages.end(),
                                [&](Message const& message) { return message.packet.topic == topic; }));
        TopicsHaveTheForm();
    };
}

void NamesDifferByMoreThanCase() {
    ForEach(Births, [](Message const& message) {
        std::set<std::string> names;
        for (Metric const& metric : message.payload.metrics()) {
            std::string name = metric.name();
            std::transform(name.begin(), name.end(), name.begin(),
                           [](unsigned char letter) { return std::tolower(letter); });
            EXPECT_TRUE(names.insert(name).second) << name;
        }
    });
    std::set<std::string> devices;
    for (Message const& message : PlainLife().Of("DBIRTH")) {
        devices.insert(message.device);
    }
    EXPECT_EQ(devices.size(), 1U + SmallDevices);
}

std::vector<Assertion> const IdsAndTopicsAssertions{
    {"intro-group-id-string", IdsAreLegal},
    {"intro-group-id-chars", IdsAreLegal},
    {"intro-edge-node-id-string", IdsAreLegal},
    {"intro-edge-node-id-chars", IdsAreLegal},
    {"intro-device-id-string", IdsAreLegal},
    {"intro-device-id-chars", IdsAreLegal},
    {"intro-edge-node-id-uniqueness", DescriptorIsUnique},
    {"topic-structure", TopicsHaveTheForm},
    {"topic-structure-namespace-a", TopicsHaveTheForm},
    {"topic-structure-namespace-valid-group-id", IdsAreLegal},
    {"topic-structure-namespace-valid-edge-node-id", IdsAreLegal},
    {"topic-structure-namespace-valid-device-id", IdsAreLegal},
    {"topic-structure-namespace-unique-edge-node-descriptor", DescriptorIsUnique},
    {"topic-structure-namespace-unique-device-id", DeviceIdsDiffer},
    {"topic-structure-namespace-duplicate-device-id-across-edge-node", DeviceIdMayRecur},
    {"topic-structure-namespace-device-id-associated-message-types", TopicsHaveTheForm},
    {"topic-structure-namespace-device-id-non-associated-message-types", TopicsHaveTheForm},
    {"case-sensitivity-sparkplug-ids", NamesDifferByMoreThanCase},
    {"case-sensitivity-metric-names", NamesDifferByMoreThanCase},
    {"topics-nbirth-topic", TopicIs("NBIRTH", "spBv1.0/Plant/NBIRTH/gw1")},
    {"topics-ndata-topic", TopicIs("NDATA", "spBv1.0/Plant/NDATA/gw1")},
    {"topics-ndeath-topic", TopicIs("NDEATH", "spBv1.0/Plant/NDEATH/gw1")},
    {"topics-dbirth-topic", TopicIs("DBIRTH", "spBv1.0/Plant/DBIRTH/gw1/press1")},
    {"topics-ddata-topic", TopicIs("DDATA", "spBv1.0/Plant/DDATA/gw1/press1")},
    {"topics-ddeath-topic", TopicIs("DDEATH", "spBv1.0/Plant/DDEATH/gw1/press1")},
    {"message-flow-edge-node-birth-publish-nbirth-topic", TopicIs("NBIRTH", "spBv1.0/Plant/NBIRTH/gw1")},
    {"payloads-nbirth-edge-node-descriptor", DescriptorIsUnique},
    {"message-flow-device-birth-publish-dbirth-topic", TopicIs("DBIRTH", "spBv1.0/Plant/DBIRTH/gw1/press1")},
    {"message-flow-device-birth-publish-dbirth-match-edge-node-topic", TopicsHaveTheForm},
};

INSTANTIATE_TEST_SUITE_P(IdsAndTopics, SparkplugChecklist, testing::ValuesIn(IdsAndTopicsAssertions), NameOf);

} // namespace
} // namespace harvlink::test
