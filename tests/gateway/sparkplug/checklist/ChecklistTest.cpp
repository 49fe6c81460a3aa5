#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "gateway/sparkplug/Ids.h"
#include "gateway/sparkplug/Topics.h"
#include "gateway/sparkplug/checklist/Life.h"

/// Each assertion that Sparkplug B 3.0 makes of a node that only reads, over MQTT 3.1.1, held against what the node really sent. The
/// names are those of the assertions, with underscores for hyphens and without "tck-id-" in front.

namespace harvlink::test {
namespace {

using Metric = org::eclipse::tahu::protobuf::Metric;
using gateway::sparkplug::ProblemOfId;

std::vector<std::string> const Births{"NBIRTH", "DBIRTH"};
std::vector<std::string> const Data{"NDATA", "DDATA"};
std::vector<std::string> const Numbered{"NBIRTH", "DBIRTH", "NDATA", "DDATA", "DDEATH"};

Life const& TheLife() {
    return PlainLife();
}

std::vector<Message> MessagesOf(std::vector<std::string> const& types) {
    std::vector<Message> found;
    for (Message const& message : TheLife().messages) {
        if (std::find(types.begin(), types.end(), message.type) != types.end()) {
            found.push_back(message);
        }
    }
    EXPECT_FALSE(found.empty());
    return found;
}

void ForEach(std::vector<std::string> const& types, std::function<void(Message const&)> const& check) {
    for (Message const& message : MessagesOf(types)) {
        SCOPED_TRACE(message.packet.topic);
        check(message);
    }
}

void ForEachMetric(std::vector<std::string> const& types, std::function<void(Metric const&)> const& check) {
    ForEach(types, [&](Message const& message) {
        for (Metric const& metric : message.payload.metrics()) {
            check(metric);
        }
    });
}

bool HasValue(Metric const& metric) {
    return metric.value_case() != Metric::VALUE_NOT_SET;
}

Metric const* Find(Message const& message, std::string const& name) {
    for (Metric const& metric : message.payload.metrics()) {
        if (metric.name() == name) {
            return &metric;
        }
    }
    return nullptr;
}

// Ids and topics.

void IdsAreLegal() {
    for (char const* const id :
         {"a+b", "a/b", "a#b", "", "\xff", "\xed\xa0\x80", "a\x01", "a\x7f", "a\xc2\x80", "\xef\xbf\xbf"}) {
        EXPECT_NE(ProblemOfId(id), "") << id;
    }
    for (char const* const id : {"Plant", "gw 1",
                                 "Pre\xc3\x9f"
                                 "e",
                                 "\xf0\x9f\xa4\x96"}) {
        EXPECT_EQ(ProblemOfId(id), "");
    }
    for (char const* const name : {"a/b", "a+b#", "\xff", "press1"}) {
        EXPECT_EQ(ProblemOfId(gateway::sparkplug::DeviceIdOf(name)), "");
    }
}

/// Two nodes of the same pair of ids get the same client id, of which a broker holds one connection.
void DescriptorIsUnique() {
    for (MqttPacket const& packet : TheLife().Packets(MqttPacket::Connect)) {
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
    for (Message const& message : TheLife().messages) {
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
    for (Message const& message : TheLife().Of("DBIRTH")) {
        devices.insert(message.device);
    }
    EXPECT_EQ(devices.size(), 1U + SmallDevices);
}

// Connecting and will.

auto Connects(std::function<void(MqttPacket const&)> check) {
    return [check = std::move(check)] {
        auto const packets = TheLife().Packets(MqttPacket::Connect);
        EXPECT_EQ(packets.size(), 2U);
        std::for_each(packets.begin(), packets.end(), check);
    };
}

std::uint64_t SessionOf(std::string const& death) {
    org::eclipse::tahu::protobuf::Payload payload;
    EXPECT_TRUE(payload.ParseFromString(death));
    EXPECT_EQ(payload.metrics_size(), 1);
    EXPECT_EQ(payload.metrics(0).name(), "bdSeq");
    EXPECT_EQ(payload.metrics(0).datatype(), 4U);
    EXPECT_TRUE(payload.metrics(0).has_long_value());
    EXPECT_FALSE(payload.has_seq());
    return payload.metrics(0).long_value();
}

void WillCountsUp() {
    std::uint64_t expected = 0;
    for (MqttPacket const& packet : TheLife().Packets(MqttPacket::Connect)) {
        EXPECT_EQ(SessionOf(packet.will), expected++);
    }
    EXPECT_EQ(TheLife().Packets(MqttPacket::Connect).front().will, std::string("\x12\x0b\x0a\x05"
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

/// The order of packets in each connection: `first` comes before the first `second`.
void Precedes(std::function<bool(MqttPacket const&)> const& first,
              std::function<bool(MqttPacket const&)> const& second) {
    std::map<std::size_t, bool> seen;
    std::size_t found = 0;
    for (MqttPacket const& packet : TheLife().packets) {
        seen[packet.connection] = seen[packet.connection] || first(packet);
        if (second(packet)) {
            EXPECT_TRUE(seen[packet.connection]) << packet.topic;
            ++found;
        }
    }
    EXPECT_GT(found, 0U);
}

auto IsType(int type) {
    return [=](MqttPacket const& packet) { return packet.type == type; };
}
auto IsMessage(std::string type) {
    return [=](MqttPacket const& packet) {
        return packet.isFromNode && packet.type == MqttPacket::Publish &&
               packet.topic.find("/" + type + "/") != std::string::npos;
    };
}
bool IsNodePublish(MqttPacket const& packet) {
    return packet.isFromNode && packet.type == MqttPacket::Publish;
}

void CommandsAreSubscribed() {
    Precedes(
        [](MqttPacket const& packet) {
            return packet.type == MqttPacket::Subscribe && packet.topic == "spBv1.0/Plant/NCMD/gw1" && packet.qos == 1;
        },
        IsMessage("NBIRTH"));
    Precedes(IsType(MqttPacket::Suback), IsMessage("NBIRTH"));
}

// Births and data.

auto QosIsZero(std::string type) {
    return [=] {
        ForEach({type}, [](Message const& message) {
            EXPECT_EQ(message.packet.qos, 0);
            EXPECT_FALSE(message.packet.retain);
        });
    };
}

auto IsStamped(std::string type) {
    return [=] {
        ForEach({type}, [](Message const& message) {
            EXPECT_TRUE(message.payload.has_timestamp());
            EXPECT_LE(message.payload.timestamp(), message.packet.time);
            EXPECT_GT(message.payload.timestamp() + 5000, message.packet.time);
        });
    };
}

/// One counter for all messages of a connection, from 0 at each NBIRTH, and back to 0 behind 255.
void NumbersGoOn() {
    int next = -1;
    bool hasWrapped = false;
    ForEach(Numbered, [&](Message const& message) {
        EXPECT_TRUE(message.payload.has_seq());
        auto const number = static_cast<int>(message.payload.seq());
        EXPECT_EQ(number, message.type == "NBIRTH" ? 0 : next);
        hasWrapped = hasWrapped || next == 0;
        next = (number + 1) % 256;
    });
    EXPECT_TRUE(hasWrapped);
}

auto Decodes(std::string type) {
    return [=] { ForEach({type}, [](Message const& message) { EXPECT_TRUE(message.isDecoded); }); };
}

void BirthsAreWhole() {
    ForEachMetric(Births, [](Metric const& metric) {
        EXPECT_TRUE(metric.has_name());
        EXPECT_TRUE(metric.has_datatype());
        EXPECT_TRUE(metric.has_timestamp());
        EXPECT_NE(metric.is_null(), HasValue(metric)) << metric.name();
        EXPECT_FALSE(metric.is_historical());
    });
    auto const birth = TheLife().Of("DBIRTH").front();
    EXPECT_DOUBLE_EQ(Find(birth, "position R1 base/x")->double_value(), 1.5);
    EXPECT_TRUE(Find(birth, "state/servo")->boolean_value());
    for (char const* const unread : {"B005", "R001", "S001"}) { // never read, not a number, refused
        EXPECT_TRUE(Find(birth, unread)->is_null()) << unread;
    }
}

/// Every alias of a data message was born in the present session, and births list the same names each time.
void BirthsListEverything() {
    std::map<std::string, std::set<std::string>> names;
    std::set<std::uint64_t> aliases;
    ForEach({"NBIRTH", "DBIRTH", "DDATA", "NDATA"}, [&](Message const& message) {
        std::set<std::string> present;
        for (Metric const& metric : message.payload.metrics()) {
            if (message.type == "DBIRTH") {
                aliases.insert(metric.alias());
            }
            if (message.type == "DDATA") {
                EXPECT_TRUE(aliases.contains(metric.alias()));
            }
            present.insert(metric.name());
        }
        if (message.type == "NBIRTH") {
            aliases.clear();
        }
        if (message.type.ends_with("BIRTH")) {
            EXPECT_EQ(names.emplace(message.device, present).first->second, present);
        } else if (message.type == "NDATA") {
            EXPECT_TRUE(std::includes(names[""].begin(), names[""].end(), present.begin(), present.end()));
        }
    });
}

void TimesAreInOrder() {
    ForEach({"NBIRTH", "DBIRTH", "NDATA", "DDATA"}, [](Message const& message) {
        std::uint64_t last = 0;
        for (Metric const& metric : message.payload.metrics()) {
            EXPECT_GE(metric.timestamp(), metric.is_historical() ? 0 : last);
            last = metric.is_historical() ? last : metric.timestamp();
            EXPECT_LE(metric.timestamp(), message.packet.time + 10);
            EXPECT_GT(metric.timestamp() + 60'000, message.packet.time);
        }
    });
}

void RebirthMetricIsRight() {
    ForEach({"NBIRTH"}, [](Message const& message) {
        Metric const* const metric = Find(message, "Node Control/Rebirth");
        ASSERT_NE(metric, nullptr);
        EXPECT_EQ(metric->datatype(), 11U);
        EXPECT_TRUE(metric->has_boolean_value());
        EXPECT_FALSE(metric->boolean_value());
        EXPECT_FALSE(metric->has_alias());
    });
}

void NodeBirthHasSession() {
    std::map<std::size_t, std::uint64_t> wills;
    for (MqttPacket const& packet : TheLife().Packets(MqttPacket::Connect)) {
        wills[packet.connection] = SessionOf(packet.will);
    }
    ForEach({"NBIRTH"}, [&](Message const& message) {
        Metric const* const metric = Find(message, "bdSeq");
        ASSERT_NE(metric, nullptr);
        EXPECT_EQ(metric->datatype(), 4U);
        EXPECT_EQ(metric->long_value(), wills.at(message.packet.connection));
    });
}

void NodeBirthComesFirst() {
    Precedes(IsMessage("NBIRTH"), IsNodePublish);
}

/// After each NBIRTH the births of all devices that are known come before any data.
void BirthsPrecedeData() {
    std::size_t devices = 0;
    std::size_t bornSince = 0;
    ForEach({"NBIRTH", "DBIRTH", "DDATA", "NDATA"}, [&](Message const& message) {
        bornSince = message.type == "NBIRTH" ? 0 : bornSince + (message.type == "DBIRTH" ? 1 : 0);
        devices = std::max(devices, bornSince);
        if (message.type == "DDATA" || message.type == "NDATA") {
            EXPECT_GE(bornSince, std::min<std::size_t>(devices, 1 + SmallDevices));
        }
    });
    NodeBirthComesFirst();
}

void OnlyChangesAreSent() {
    std::map<std::uint64_t, std::string> last;
    ForEach({"DBIRTH", "DDATA"}, [&](Message const& message) {
        for (Metric const& metric : message.payload.metrics()) {
            Metric value = metric;
            value.clear_timestamp();
            value.clear_name();
            value.clear_datatype();
            if (message.type == "DDATA" && !metric.is_historical()) {
                EXPECT_NE(last[metric.alias()], value.SerializeAsString());
            }
            last[metric.alias()] = value.SerializeAsString();
        }
    });
    std::set<std::int64_t> sent;
    for (Message const& message : TheLife().Of("DDATA")) {
        if (message.device == "press1" && message.payload.metrics_size() == 1) {
            sent.insert(static_cast<std::int64_t>(message.payload.metrics(0).long_value()));
        }
    }
    for (std::int64_t const value : {1, 2, 3, 4}) {
        EXPECT_TRUE(sent.contains(value)) << value;
    }
}

void NodeDataHasChanges() {
    ForEach({"NDATA"}, [](Message const& message) { EXPECT_GT(message.payload.metrics_size(), 0); });
    auto const messages = TheLife().Of("NDATA");
    EXPECT_TRUE(std::any_of(messages.begin(), messages.end(), [](Message const& message) {
        Metric const* const metric = Find(message, "Gateway/Controllers Online");
        return metric != nullptr && metric->long_value() == SmallDevices;
    }));
}

void DataHasNoDatatype() {
    ForEachMetric(Data, [](Metric const& metric) {
        EXPECT_FALSE(metric.has_datatype());
        EXPECT_TRUE(metric.has_timestamp());
    });
}

void AliasesAreUnique() {
    std::map<std::uint64_t, std::string> names;
    ForEach({"DBIRTH"}, [&](Message const& message) {
        for (Metric const& metric : message.payload.metrics()) {
            ASSERT_TRUE(metric.has_alias());
            ASSERT_TRUE(metric.has_name());
            std::string const name = message.device + "/" + metric.name();
            EXPECT_EQ(names.emplace(metric.alias(), name).first->second, name); // stable through rebirths too
        }
    });
}

void DataIsByAlias() {
    ForEachMetric({"DDATA"}, [](Metric const& metric) {
        EXPECT_TRUE(metric.has_alias());
        EXPECT_FALSE(metric.has_name());
    });
    ForEachMetric({"NDATA"}, [](Metric const& metric) { EXPECT_TRUE(metric.has_name()); });
}

void DatatypesAreKnown() {
    ForEachMetric(Births, [](Metric const& metric) {
        std::map<std::uint32_t, int> const fields{{4, Metric::kLongValue},
                                                  {10, Metric::kDoubleValue},
                                                  {11, Metric::kBooleanValue},
                                                  {12, Metric::kStringValue}};
        ASSERT_TRUE(fields.contains(metric.datatype())) << metric.name();
        EXPECT_TRUE(metric.is_null() || metric.value_case() == fields.at(metric.datatype()));
    });
}

void PropertiesAreRight() {
    std::set<std::string> units;
    std::set<std::uint32_t> qualities;
    ForEachMetric(Births, [&](Metric const& metric) {
        auto const& properties = metric.properties();
        ASSERT_EQ(properties.keys_size(), properties.values_size());
        for (int i = 0; i < properties.keys_size(); ++i) {
            auto const& value = properties.values(i);
            ASSERT_TRUE(value.has_type());
            if (properties.keys(i) == "Quality") {
                EXPECT_EQ(value.type(), 3U);
                EXPECT_TRUE(value.has_int_value());
                qualities.insert(value.int_value());
            } else {
                EXPECT_EQ(properties.keys(i), "engUnit");
                EXPECT_EQ(value.type(), 12U);
                units.insert(value.string_value());
            }
        }
    });
    EXPECT_TRUE(units.contains("mm") && units.contains("deg"));
    EXPECT_EQ(qualities, std::set<std::uint32_t>{0});
}

// Commands and deaths.

/// The second NBIRTH of the first connection is the rebirth: the births of all follow at once, then data.
void RebirthIsWhole() {
    std::vector<Message> first;
    for (Message const& message : MessagesOf(Numbered)) {
        if (message.packet.connection == 0) {
            first.push_back(message);
        }
    }
    auto const isNodeBirth = [](Message const& message) { return message.type == "NBIRTH"; };
    ASSERT_EQ(std::count_if(first.begin(), first.end(), isNodeBirth), 2);
    auto const rebirth = std::find_if(first.begin() + 1, first.end(), isNodeBirth);
    ASSERT_GT(first.end() - rebirth, SmallDevices + 1);
    EXPECT_TRUE(std::all_of(rebirth + 1, rebirth + 2 + SmallDevices,
                            [](Message const& message) { return message.type == "DBIRTH"; }));
    EXPECT_EQ(Find(first.front(), "bdSeq")->long_value(), Find(*rebirth, "bdSeq")->long_value());
    EXPECT_EQ(rebirth->payload.seq(), 0U);
    EXPECT_EQ(Find(*(rebirth + 1), "B005")->long_value(), 2U); // the value of now
}

void LostDeviceDies() {
    auto const deaths = TheLife().Of("DDEATH");
    ASSERT_EQ(deaths.size(), 1U);
    EXPECT_EQ(deaths.front().device, "press1");
    EXPECT_EQ(deaths.front().payload.metrics_size(), 0);
}

void DeathPrecedesDisconnect() {
    auto const messages = TheLife().messages;
    EXPECT_EQ(messages.back().type, "NDEATH");
    EXPECT_EQ(TheLife().Of("NDEATH").size(), 1U);
    auto const& packets = TheLife().packets;
    EXPECT_EQ(packets.back().type, MqttPacket::Disconnect);
    EXPECT_EQ(packets[packets.size() - 2].type, MqttPacket::Puback);
}

// The primary host.

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

struct Assertion {
    char const* id;
    std::function<void()> check;
};

auto const WillOf = [](auto check) { return Connects(check); };
auto const HasWill = WillOf([](MqttPacket const& packet) { EXPECT_TRUE(packet.hasWill); });
auto const WillQos = WillOf([](MqttPacket const& packet) { EXPECT_EQ(packet.willQos, 1); });
auto const WillIsNotRetained = WillOf([](MqttPacket const& packet) { EXPECT_FALSE(packet.willRetain); });
auto const WillTopic =
    WillOf([](MqttPacket const& packet) { EXPECT_EQ(packet.willTopic, "spBv1.0/Plant/NDEATH/gw1"); });
auto const WillDecodes = WillOf([](MqttPacket const& packet) { SessionOf(packet.will); });

std::vector<Assertion> const Assertions{
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
    {"topics-ncmd-topic", CommandsAreSubscribed},
    {"topics-dbirth-topic", TopicIs("DBIRTH", "spBv1.0/Plant/DBIRTH/gw1/press1")},
    {"topics-ddata-topic", TopicIs("DDATA", "spBv1.0/Plant/DDATA/gw1/press1")},
    {"topics-ddeath-topic", TopicIs("DDEATH", "spBv1.0/Plant/DDEATH/gw1/press1")},

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

    {"principles-birth-certificates-order", NodeBirthComesFirst},
    {"message-flow-edge-node-birth-publish-nbirth-topic", TopicIs("NBIRTH", "spBv1.0/Plant/NBIRTH/gw1")},
    {"message-flow-edge-node-birth-publish-nbirth-payload", Decodes("NBIRTH")},
    {"message-flow-edge-node-birth-publish-nbirth-payload-bdSeq", NodeBirthHasSession},
    {"message-flow-edge-node-birth-publish-nbirth-qos", QosIsZero("NBIRTH")},
    {"message-flow-edge-node-birth-publish-nbirth-retained", QosIsZero("NBIRTH")},
    {"message-flow-edge-node-birth-publish-nbirth-payload-seq", NumbersGoOn},
    {"topics-nbirth-mqtt", QosIsZero("NBIRTH")},
    {"topics-nbirth-seq-num", NumbersGoOn},
    {"topics-nbirth-timestamp", IsStamped("NBIRTH")},
    {"topics-nbirth-metric-reqs", BirthsListEverything},
    {"topics-nbirth-metrics", BirthsAreWhole},
    {"topics-nbirth-bdseq-included", NodeBirthHasSession},
    {"topics-nbirth-bdseq-matching", NodeBirthHasSession},
    {"topics-nbirth-bdseq-increment", WillCountsUp},
    {"topics-nbirth-rebirth-metric", RebirthMetricIsRight},
    {"payloads-nbirth-timestamp", IsStamped("NBIRTH")},
    {"payloads-nbirth-edge-node-descriptor", DescriptorIsUnique},
    {"payloads-nbirth-seq", NumbersGoOn},
    {"payloads-nbirth-bdseq", NodeBirthHasSession},
    {"payloads-nbirth-bdseq-repeat", RebirthIsWhole},
    {"payloads-nbirth-rebirth-req", RebirthMetricIsRight},
    {"payloads-nbirth-qos", QosIsZero("NBIRTH")},
    {"payloads-nbirth-retain", QosIsZero("NBIRTH")},
    {"operational-behavior-data-publish-nbirth", BirthsListEverything},
    {"operational-behavior-data-publish-nbirth-values", BirthsAreWhole},
    {"operational-behavior-data-publish-nbirth-order", TimesAreInOrder},
    {"operational-behavior-data-commands-rebirth-name", RebirthMetricIsRight},
    {"operational-behavior-data-commands-rebirth-name-aliases", RebirthMetricIsRight},
    {"operational-behavior-data-commands-rebirth-datatype", RebirthMetricIsRight},
    {"operational-behavior-data-commands-rebirth-value", RebirthMetricIsRight},

    {"message-flow-device-birth-publish-nbirth-wait", NodeBirthComesFirst},
    {"message-flow-device-birth-publish-dbirth-topic", TopicIs("DBIRTH", "spBv1.0/Plant/DBIRTH/gw1/press1")},
    {"message-flow-device-birth-publish-dbirth-match-edge-node-topic", TopicsHaveTheForm},
    {"message-flow-device-birth-publish-dbirth-payload", Decodes("DBIRTH")},
    {"message-flow-device-birth-publish-dbirth-qos", QosIsZero("DBIRTH")},
    {"message-flow-device-birth-publish-dbirth-retained", QosIsZero("DBIRTH")},
    {"message-flow-device-birth-publish-dbirth-payload-seq", NumbersGoOn},
    {"topics-dbirth-mqtt", QosIsZero("DBIRTH")},
    {"topics-dbirth-seq", NumbersGoOn},
    {"topics-dbirth-timestamp", IsStamped("DBIRTH")},
    {"topics-dbirth-metric-reqs", BirthsListEverything},
    {"topics-dbirth-metrics", BirthsAreWhole},
    {"payloads-dbirth-timestamp", IsStamped("DBIRTH")},
    {"payloads-dbirth-seq", NumbersGoOn},
    {"payloads-dbirth-seq-inc", NumbersGoOn},
    {"payloads-dbirth-order", BirthsPrecedeData},
    {"payloads-dbirth-qos", QosIsZero("DBIRTH")},
    {"payloads-dbirth-retain", QosIsZero("DBIRTH")},
    {"operational-behavior-data-publish-dbirth", BirthsListEverything},
    {"operational-behavior-data-publish-dbirth-values", BirthsAreWhole},
    {"operational-behavior-data-publish-dbirth-order", TimesAreInOrder},

    {"principles-rbe-recommended", OnlyChangesAreSent},
    {"operational-behavior-data-publish-nbirth-change", NodeDataHasChanges},
    {"operational-behavior-data-publish-dbirth-change", OnlyChangesAreSent},
    {"topics-ndata-mqtt", QosIsZero("NDATA")},
    {"topics-ndata-seq-num", NumbersGoOn},
    {"topics-ndata-timestamp", IsStamped("NDATA")},
    {"topics-ndata-payload", NodeDataHasChanges},
    {"payloads-ndata-timestamp", IsStamped("NDATA")},
    {"payloads-ndata-seq", NumbersGoOn},
    {"payloads-ndata-seq-inc", NumbersGoOn},
    {"payloads-ndata-order", BirthsPrecedeData},
    {"payloads-ndata-qos", QosIsZero("NDATA")},
    {"payloads-ndata-retain", QosIsZero("NDATA")},
    {"topics-ddata-mqtt", QosIsZero("DDATA")},
    {"topics-ddata-seq-num", NumbersGoOn},
    {"topics-ddata-timestamp", IsStamped("DDATA")},
    {"topics-ddata-payload", OnlyChangesAreSent},
    {"payloads-ddata-timestamp", IsStamped("DDATA")},
    {"payloads-ddata-seq", NumbersGoOn},
    {"payloads-ddata-seq-inc", NumbersGoOn},
    {"payloads-ddata-order", BirthsPrecedeData},
    {"payloads-ddata-qos", QosIsZero("DDATA")},
    {"payloads-ddata-retain", QosIsZero("DDATA")},

    {"payloads-timestamp-in-UTC", IsStamped("DBIRTH")},
    {"payloads-metric-timestamp-in-UTC", TimesAreInOrder},
    {"payloads-sequence-num-always-included", NumbersGoOn},
    {"payloads-sequence-num-req-nbirth", NumbersGoOn},
    {"payloads-sequence-num-incrementing", NumbersGoOn},
    {"payloads-name-requirement", DataIsByAlias},
    {"payloads-name-birth-data-requirement", DataHasNoDatatype},
    {"payloads-alias-uniqueness", AliasesAreUnique},
    {"payloads-alias-birth-requirement", AliasesAreUnique},
    {"payloads-alias-data-cmd-requirement", DataIsByAlias},
    {"payloads-metric-datatype-value-type", DatatypesAreKnown},
    {"payloads-metric-datatype-value", DatatypesAreKnown},
    {"payloads-metric-datatype-req", BirthsAreWhole},
    {"payloads-metric-datatype-not-req", DataHasNoDatatype},
    {"payloads-propertyset-keys-array-size", PropertiesAreRight},
    {"payloads-propertyset-values-array-size", PropertiesAreRight},
    {"payloads-metric-propertyvalue-type-type", PropertiesAreRight},
    {"payloads-metric-propertyvalue-type-value", PropertiesAreRight},
    {"payloads-metric-propertyvalue-type-req", PropertiesAreRight},
    {"payloads-propertyset-quality-value-type", PropertiesAreRight},
    {"payloads-propertyset-quality-value-value", PropertiesAreRight},

    {"operational-behavior-data-commands-rebirth-action-1", RebirthIsWhole},
    {"operational-behavior-data-commands-rebirth-action-2", RebirthIsWhole},
    {"operational-behavior-data-commands-rebirth-action-3", RebirthIsWhole},
    {"operational-behavior-data-commands-ncmd-rebirth-verb", RebirthIsWhole},
    {"operational-behavior-data-commands-ncmd-rebirth-name", RebirthIsWhole},
    {"operational-behavior-data-commands-ncmd-rebirth-value", RebirthIsWhole},

    {"operational-behavior-device-ddeath", LostDeviceDies},
    {"topics-ddeath-mqtt", QosIsZero("DDEATH")},
    {"topics-ddeath-seq-num", NumbersGoOn},
    {"payloads-ddeath-timestamp", IsStamped("DDEATH")},
    {"payloads-ddeath-seq", NumbersGoOn},
    {"payloads-ddeath-seq-inc", NumbersGoOn},
    {"payloads-ddeath-seq-number", NumbersGoOn},
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

std::string NameOf(testing::TestParamInfo<Assertion> const& info) {
    std::string name = info.param.id;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

void PrintTo(Assertion const& assertion, std::ostream* stream) {
    *stream << assertion.id;
}

class SparkplugChecklist : public testing::TestWithParam<Assertion> {};

TEST_P(SparkplugChecklist, Holds) {
    GetParam().check();
}

INSTANTIATE_TEST_SUITE_P(Tck, SparkplugChecklist, testing::ValuesIn(Assertions), NameOf);

} // namespace
} // namespace harvlink::test
