#include "gateway/sparkplug/Metrics.h"

#include <cmath>
#include <optional>

#include "gateway/sparkplug/Ids.h"

namespace harvlink::gateway::sparkplug {

namespace {

DataType TypeOf(recording::RecordedType type) {
    switch (type) {
    case recording::RecordedType::Real:
        return DataType::Double;
    case recording::RecordedType::Text:
        return DataType::String;
    case recording::RecordedType::Truth:
        return DataType::Boolean;
    case recording::RecordedType::Integer:
        break;
    }
    return DataType::Int64;
}

std::string NameOf(recording::RecordedReading const& reading, recording::RecordedItem const& item) {
    return RepairedUtf8(item.field.empty() ? reading.name : reading.name + "/" + item.field);
}

std::optional<double> NumberOf(recording::RecordedValue const& value) {
    if (auto const* const real = std::get_if<double>(&value)) {
        return std::isfinite(*real) ? std::optional(*real) : std::nullopt;
    }
    if (auto const* const integer = std::get_if<std::int64_t>(&value)) {
        return static_cast<double>(*integer);
    }
    return std::nullopt;
}

/// False if the value is not of this type.
bool SetInteger(proto::Metric& metric, DataType type, recording::RecordedValue const& value) {
    auto const* const integer = std::get_if<std::int64_t>(&value);
    if (integer == nullptr) {
        return false;
    }
    if (type == DataType::Boolean) {
        metric.set_boolean_value(*integer != 0);
    } else {
        metric.set_long_value(static_cast<std::uint64_t>(*integer));
    }
    return true;
}

bool SetTyped(proto::Metric& metric, DataType type, recording::RecordedValue const& value) {
    if (type == DataType::Double) {
        auto const number = NumberOf(value);
        if (number) {
            metric.set_double_value(*number);
        }
        return number.has_value();
    }
    if (type == DataType::String) {
        auto const* const text = std::get_if<std::string>(&value);
        if (text != nullptr) {
            metric.set_string_value(RepairedUtf8(*text));
        }
        return text != nullptr;
    }
    return SetInteger(metric, type, value);
}

proto::PropertyValue& NewProperty(proto::Metric& metric, std::string_view key, DataType type) {
    metric.mutable_properties()->add_keys(std::string(key));
    proto::PropertyValue& property = *metric.mutable_properties()->add_values();
    property.set_type(static_cast<std::uint32_t>(type));
    return property;
}

} // namespace

MetricTable::MetricTable(Controller const& controller, std::uint64_t firstAlias) : firstAlias_(firstAlias) {
    for (auto const& reading : controller.readings) {
        firstOf_.push_back(metrics_.size());
        for (auto const& item : reading.items) {
            metrics_.push_back({NameOf(reading, item), TypeOf(item.type), RepairedUtf8(item.unit)});
        }
    }
    for (std::size_t i = 0; i < metrics_.size(); ++i) {
        places_.emplace(metrics_[i].name, i);
    }
}

std::size_t MetricTable::Find(std::string_view name) const {
    auto const place = places_.find(name);
    return place == places_.end() ? Size() : place->second;
}

void SetValue(proto::Metric& metric, DataType type, recording::RecordedValue const& value, Quality quality) {
    if (!SetTyped(metric, type, value)) {
        metric.set_is_null(true);
        // A value that was not read yet is only null. One that can't be sent is bad.
        if (!std::holds_alternative<std::monostate>(value)) {
            quality = Quality::Bad;
        }
    }
    if (quality != Quality::Good) {
        NewProperty(metric, "Quality", DataType::Int32).set_int_value(static_cast<std::uint32_t>(quality));
    }
}

void AddProperty(proto::Metric& metric, std::string_view key, std::string_view value) {
    NewProperty(metric, key, DataType::String).set_string_value(std::string(value));
}

void Define(proto::Metric& metric, MetricDefinition const& definition) {
    metric.set_name(definition.name);
    metric.set_datatype(static_cast<std::uint32_t>(definition.type));
    if (!definition.unit.empty()) {
        AddProperty(metric, "engUnit", definition.unit);
    }
}

} // namespace harvlink::gateway::sparkplug
