#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gateway/sparkplug/checklist/Checklist.h"

/// Metrics are sent when they change, by alias, with the datatypes and properties of their births.

namespace harvlink::test {
namespace {

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
    for (Message const& message : PlainLife().Of("DDATA")) {
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
    auto const messages = PlainLife().Of("NDATA");
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

std::vector<Assertion> const MetricsAssertions{
    {"principles-rbe-recommended", OnlyChangesAreSent},
    {"operational-behavior-data-publish-nbirth-change", NodeDataHasChanges},
    {"operational-behavior-data-publish-dbirth-change", OnlyChangesAreSent},
    {"topics-ndata-payload", NodeDataHasChanges},
    {"topics-ddata-payload", OnlyChangesAreSent},
    {"payloads-name-requirement", DataIsByAlias},
    {"payloads-name-birth-data-requirement", DataHasNoDatatype},
    {"payloads-alias-uniqueness", AliasesAreUnique},
    {"payloads-alias-birth-requirement", AliasesAreUnique},
    {"payloads-alias-data-cmd-requirement", DataIsByAlias},
    {"payloads-metric-datatype-value-type", DatatypesAreKnown},
    {"payloads-metric-datatype-value", DatatypesAreKnown},
    {"payloads-metric-datatype-not-req", DataHasNoDatatype},
    {"payloads-propertyset-keys-array-size", PropertiesAreRight},
    {"payloads-propertyset-values-array-size", PropertiesAreRight},
    {"payloads-metric-propertyvalue-type-type", PropertiesAreRight},
    {"payloads-metric-propertyvalue-type-value", PropertiesAreRight},
    {"payloads-metric-propertyvalue-type-req", PropertiesAreRight},
    {"payloads-propertyset-quality-value-type", PropertiesAreRight},
    {"payloads-propertyset-quality-value-value", PropertiesAreRight},
};

INSTANTIATE_TEST_SUITE_P(Metrics, SparkplugChecklist, testing::ValuesIn(MetricsAssertions), NameOf);

} // namespace
} // namespace harvlink::test
