#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gateway/sparkplug/checklist/Checklist.h"

/// Births list everything, come before any data, and come again on request.

namespace harvlink::test {
namespace {

void BirthsAreWhole() {
    ForEachMetric(Births, [](Metric const& metric) {
        EXPECT_TRUE(metric.has_name());
        EXPECT_TRUE(metric.has_datatype());
        EXPECT_TRUE(metric.has_timestamp());
        EXPECT_NE(metric.is_null(), metric.value_case() != Metric::VALUE_NOT_SET) << metric.name();
        EXPECT_FALSE(metric.is_historical());
    });
    auto const birth = PlainLife().Of("DBIRTH").front();
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

std::vector<Assertion> const BirthsAssertions{
    {"principles-birth-certificates-order", NodeBirthComesFirst},
    {"topics-nbirth-metric-reqs", BirthsListEverything},
    {"topics-nbirth-metrics", BirthsAreWhole},
    {"topics-nbirth-rebirth-metric", RebirthMetricIsRight},
    {"payloads-nbirth-bdseq-repeat", RebirthIsWhole},
    {"payloads-nbirth-rebirth-req", RebirthMetricIsRight},
    {"operational-behavior-data-publish-nbirth", BirthsListEverything},
    {"operational-behavior-data-publish-nbirth-values", BirthsAreWhole},
    {"operational-behavior-data-commands-rebirth-name", RebirthMetricIsRight},
    {"operational-behavior-data-commands-rebirth-name-aliases", RebirthMetricIsRight},
    {"operational-behavior-data-commands-rebirth-datatype", RebirthMetricIsRight},
    {"operational-behavior-data-commands-rebirth-value", RebirthMetricIsRight},
    {"message-flow-device-birth-publish-nbirth-wait", NodeBirthComesFirst},
    {"topics-dbirth-metric-reqs", BirthsListEverything},
    {"topics-dbirth-metrics", BirthsAreWhole},
    {"payloads-dbirth-order", BirthsPrecedeData},
    {"operational-behavior-data-publish-dbirth", BirthsListEverything},
    {"operational-behavior-data-publish-dbirth-values", BirthsAreWhole},
    {"payloads-ndata-order", BirthsPrecedeData},
    {"payloads-ddata-order", BirthsPrecedeData},
    {"payloads-metric-datatype-req", BirthsAreWhole},
    {"operational-behavior-data-commands-rebirth-action-1", RebirthIsWhole},
    {"operational-behavior-data-commands-rebirth-action-2", RebirthIsWhole},
    {"operational-behavior-data-commands-rebirth-action-3", RebirthIsWhole},
    {"operational-behavior-data-commands-ncmd-rebirth-verb", RebirthIsWhole},
    {"operational-behavior-data-commands-ncmd-rebirth-name", RebirthIsWhole},
    {"operational-behavior-data-commands-ncmd-rebirth-value", RebirthIsWhole},
};

INSTANTIATE_TEST_SUITE_P(Births, SparkplugChecklist, testing::ValuesIn(BirthsAssertions), NameOf);

} // namespace
} // namespace harvlink::test
