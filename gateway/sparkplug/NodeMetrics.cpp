#include "gateway/sparkplug/NodeMetrics.h"

#include "gateway/sparkplug/Commands.h"
#include "harvlink/Version.h"

namespace harvlink::gateway::sparkplug {

namespace {

constexpr std::array<std::string_view, 4> NodeMetricNames{"Gateway/Controllers", "Gateway/Controllers Online",
                                                          "Store/Waiting Samples", "Store/Dropped Samples"};

proto::Metric& AddNodeMetric(proto::Payload& payload, std::string_view name, Timestamp now) {
    proto::Metric& metric = *payload.add_metrics();
    metric.set_name(std::string(name));
    metric.set_timestamp(now);
    return metric;
}

} // namespace

proto::Metric& AddSessionNumber(proto::Payload& payload, std::uint8_t session) {
    proto::Metric& metric = *payload.add_metrics();
    metric.set_name("bdSeq");
    metric.set_datatype(static_cast<std::uint32_t>(DataType::Int64));
    metric.set_long_value(session);
    return metric;
}

NodeMetrics::Numbers NodeMetrics::NumbersOf(NodeValues const& values) {
    return {values.controllers, values.controllersOnline, values.waiting, values.dropped};
}

void NodeMetrics::AddBirth(proto::Payload& payload, Timestamp now, std::uint8_t session, NodeValues const& values) {
    AddSessionNumber(payload, session).set_timestamp(now);
    proto::Metric& rebirth = AddNodeMetric(payload, RebirthMetric, now);
    rebirth.set_datatype(static_cast<std::uint32_t>(DataType::Boolean));
    rebirth.set_boolean_value(false);
    proto::Metric& version = AddNodeMetric(payload, "Properties/FW", now);
    version.set_datatype(static_cast<std::uint32_t>(DataType::String));
    version.set_string_value(std::string(HeaderVersion));
    sent_ = NumbersOf(values);
    for (std::size_t i = 0; i < sent_.size(); ++i) {
        proto::Metric& metric = AddNodeMetric(payload, NodeMetricNames.at(i), now);
        metric.set_datatype(static_cast<std::uint32_t>(DataType::Int64));
        metric.set_long_value(static_cast<std::uint64_t>(sent_.at(i)));
    }
}

void NodeMetrics::AddChanges(proto::Payload& payload, Timestamp now, NodeValues const& values) {
    Numbers const numbers = NumbersOf(values);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (numbers.at(i) != sent_.at(i)) {
            AddNodeMetric(payload, NodeMetricNames.at(i), now)
                .set_long_value(static_cast<std::uint64_t>(numbers.at(i)));
        }
    }
    sent_ = numbers;
}

} // namespace harvlink::gateway::sparkplug
