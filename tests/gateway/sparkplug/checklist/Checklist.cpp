#include "gateway/sparkplug/checklist/Checklist.h"

#include <algorithm>
#include <map>

namespace harvlink::test {

void PrintTo(Assertion const& assertion, std::ostream* stream) {
    *stream << assertion.id;
}

std::string NameOf(testing::TestParamInfo<Assertion> const& info) {
    std::string name = info.param.id;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

TEST_P(SparkplugChecklist, Holds) {
    GetParam().check();
}

std::vector<Message> MessagesOf(std::vector<std::string> const& types) {
    std::vector<Message> found;
    for (Message const& message : PlainLife().messages) {
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

Metric const* Find(Message const& message, std::string const& name) {
    for (Metric const& metric : message.payload.metrics()) {
        if (metric.name() == name) {
            return &metric;
        }
    }
    return nullptr;
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

void Precedes(PacketTest const& first, PacketTest const& second) {
    std::map<std::size_t, bool> seen;
    std::size_t found = 0;
    for (MqttPacket const& packet : PlainLife().packets) {
        seen[packet.connection] = seen[packet.connection] || first(packet);
        if (second(packet)) {
            EXPECT_TRUE(seen[packet.connection]) << packet.topic;
            ++found;
        }
    }
    EXPECT_GT(found, 0U);
}

PacketTest IsType(int type) {
    return [=](MqttPacket const& packet) { return packet.type == type; };
}

PacketTest IsMessage(std::string type) {
    return [=](MqttPacket const& packet) {
        return packet.isFromNode && packet.type == MqttPacket::Publish &&
               packet.topic.find("/" + type + "/") != std::string::npos;
    };
}

bool IsNodePublish(MqttPacket const& packet) {
    return packet.isFromNode && packet.type == MqttPacket::Publish;
}

} // namespace harvlink::test
