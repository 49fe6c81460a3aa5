#include "gateway/prometheus/Families.h"

#include <sstream>

#include <prometheus/text_serializer.h>

namespace harvlink::gateway {

namespace {

prometheus::MetricType TypeOf(MetricKind kind) {
    switch (kind) {
    case MetricKind::Counter:
        return prometheus::MetricType::Counter;
    case MetricKind::Histogram:
        return prometheus::MetricType::Histogram;
    default:
        return prometheus::MetricType::Gauge;
    }
}

void AddLabels(prometheus::ClientMetric& metric, std::string_view controller, Labels const& labels) {
    metric.label.reserve(labels.size() + 1);
    if (!controller.empty()) {
        metric.label.push_back({"controller", std::string(controller)});
    }
    for (auto const& [name, value] : labels) {
        metric.label.push_back({name, value});
    }
}

prometheus::ClientMetric::Histogram HistogramOf(RoundTrips::Counts const& counts) {
    prometheus::ClientMetric::Histogram histogram;
    histogram.sample_count = counts.count;
    histogram.sample_sum = counts.sum;
    std::uint64_t below = 0;
    for (std::size_t i = 0; i < RoundTrips::Bounds.size(); ++i) {
        below += counts.buckets.at(i);
        histogram.bucket.push_back({below, RoundTrips::Bounds.at(i)});
    }
    return histogram;
}

} // namespace

Families::Families(std::size_t mostSeries) : most_(mostSeries) {
    for (MetricDefinition const& definition : Definitions()) {
        families_.push_back({std::string(definition.name), std::string(definition.help), definition.kind, {}});
    }
}

void Families::Set(Metric metric, double value, std::string_view controller, Labels const& labels) {
    if (HasRoom(1)) {
        families_[static_cast<std::size_t>(metric)].values.push_back({controller, &labels, value});
    }
}

void Families::SetOnce(Metric metric, double value, std::string_view controller, Labels labels) {
    Set(metric, value, controller, kept_.emplace_back(std::move(labels)));
}

void Families::SetHistogram(Metric metric, std::string_view controller, RoundTrips::Counts const& counts) {
    if (HasRoom(RoundTrips::Bounds.size() + 3)) { // a series for each bound, one for all, sum and count
        families_[static_cast<std::size_t>(metric)].values.push_back({controller, &none_, 0.0, &counts});
    }
}

void Families::Set(Figure const& figure) {
    auto const [found, isNew] = figures_.try_emplace(figure.name, families_.size());
    if (isNew) {
        bool const isCounter = figure.name.ends_with("_total");
        families_.push_back({figure.name, figure.help, isCounter ? MetricKind::Counter : MetricKind::Gauge, {}});
    }
    if (HasRoom(1)) {
        families_[found->second].values.push_back(
            {std::string_view(), &kept_.emplace_back(figure.labels), figure.value});
    }
}

bool Families::HasRoom(std::size_t series) {
    bool const hasRoom = series_ + series <= most_;
    (hasRoom ? series_ : dropped_) += series;
    return hasRoom;
}

std::string Families::Text(std::size_t sizeBefore) {
    // The count of what is missing must not be missing itself.
    families_[static_cast<std::size_t>(Metric::DroppedSeries)].values = {
        {std::string_view(), &none_, static_cast<double>(dropped_)}};
    std::string room;
    room.reserve(sizeBefore + sizeBefore / 16);
    std::ostringstream out(std::move(room));
    // One after the other: in the form of the serialiser, all of them would take ten times the memory of the text.
    std::vector<prometheus::MetricFamily> one(1);
    for (Family const& family : families_) {
        if (family.values.empty()) {
            continue;
        }
        one[0] = {family.name, family.help, TypeOf(family.kind), {}};
        one[0].metric.reserve(family.values.size());
        for (Value const& value : family.values) {
            prometheus::ClientMetric& metric = one[0].metric.emplace_back();
            AddLabels(metric, value.controller, *value.labels);
            if (value.counts != nullptr) {
                metric.histogram = HistogramOf(*value.counts);
            } else {
                (family.kind == MetricKind::Counter ? metric.counter.value : metric.gauge.value) = value.number;
            }
        }
        prometheus::TextSerializer().Serialize(out, one);
    }
    return std::move(out).str();
}

} // namespace harvlink::gateway
