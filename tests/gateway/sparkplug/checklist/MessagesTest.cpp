#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gateway/sparkplug/checklist/Checklist.h"

/// What holds for messages of every type: quality of service, times and numbers.

namespace harvlink::test {
namespace {

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

std::vector<Assertion> const MessagesAssertions{
    {"message-flow-edge-node-birth-publish-nbirth-payload", Decodes("NBIRTH")},
    {"message-flow-edge-node-birth-publish-nbirth-qos", QosIsZero("NBIRTH")},
    {"message-flow-edge-node-birth-publish-nbirth-retained", QosIsZero("NBIRTH")},
    {"message-flow-edge-node-birth-publish-nbirth-payload-seq", NumbersGoOn},
    {"topics-nbirth-mqtt", QosIsZero("NBIRTH")},
    {"topics-nbirth-seq-num", NumbersGoOn},
    {"topics-nbirth-timestamp", IsStamped("NBIRTH")},
    {"payloads-nbirth-timestamp", IsStamped("NBIRTH")},
    {"payloads-nbirth-seq", NumbersGoOn},
    {"payloads-nbirth-qos", QosIsZero("NBIRTH")},
    {"payloads-nbirth-retain", QosIsZero("NBIRTH")},
    {"operational-behavior-data-publish-nbirth-order", TimesAreInOrder},
    {"message-flow-device-birth-publish-dbirth-payload", Decodes("DBIRTH")},
    {"message-flow-device-birth-publish-dbirth-qos", QosIsZero("DBIRTH")},
    {"message-flow-device-birth-publish-dbirth-retained", QosIsZero("DBIRTH")},
    {"message-flow-device-birth-publish-dbirth-payload-seq", NumbersGoOn},
    {"topics-dbirth-mqtt", QosIsZero("DBIRTH")},
    {"topics-dbirth-seq", NumbersGoOn},
    {"topics-dbirth-timestamp", IsStamped("DBIRTH")},
    {"payloads-dbirth-timestamp", IsStamped("DBIRTH")},
    {"payloads-dbirth-seq", NumbersGoOn},
    {"payloads-dbirth-seq-inc", NumbersGoOn},
    {"payloads-dbirth-qos", QosIsZero("DBIRTH")},
    {"payloads-dbirth-retain", QosIsZero("DBIRTH")},
    {"operational-behavior-data-publish-dbirth-order", TimesAreInOrder},
    {"topics-ndata-mqtt", QosIsZero("NDATA")},
    {"topics-ndata-seq-num", NumbersGoOn},
    {"topics-ndata-timestamp", IsStamped("NDATA")},
    {"payloads-ndata-timestamp", IsStamped("NDATA")},
    {"payloads-ndata-seq", NumbersGoOn},
    {"payloads-ndata-seq-inc", NumbersGoOn},
    {"payloads-ndata-qos", QosIsZero("NDATA")},
    {"payloads-ndata-retain", QosIsZero("NDATA")},
    {"topics-ddata-mqtt", QosIsZero("DDATA")},
    {"topics-ddata-seq-num", NumbersGoOn},
    {"topics-ddata-timestamp", IsStamped("DDATA")},
    {"payloads-ddata-timestamp", IsStamped("DDATA")},
    {"payloads-ddata-seq", NumbersGoOn},
    {"payloads-ddata-seq-inc", NumbersGoOn},
    {"payloads-ddata-qos", QosIsZero("DDATA")},
    {"payloads-ddata-retain", QosIsZero("DDATA")},
    {"payloads-timestamp-in-UTC", IsStamped("DBIRTH")},
    {"payloads-metric-timestamp-in-UTC", TimesAreInOrder},
    {"payloads-sequence-num-always-included", NumbersGoOn},
    {"payloads-sequence-num-req-nbirth", NumbersGoOn},
    {"payloads-sequence-num-incrementing", NumbersGoOn},
    {"topics-ddeath-mqtt", QosIsZero("DDEATH")},
    {"topics-ddeath-seq-num", NumbersGoOn},
    {"payloads-ddeath-timestamp", IsStamped("DDEATH")},
    {"payloads-ddeath-seq", NumbersGoOn},
    {"payloads-ddeath-seq-inc", NumbersGoOn},
    {"payloads-ddeath-seq-number", NumbersGoOn},
};

INSTANTIATE_TEST_SUITE_P(Messages, SparkplugChecklist, testing::ValuesIn(MessagesAssertions), NameOf);

} // namespace
} // namespace harvlink::test
