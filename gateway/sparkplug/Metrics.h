#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <sparkplug_b.pb.h>

#include "gateway/model/Controller.h"

namespace harvlink::gateway::sparkplug {

namespace proto = org::eclipse::tahu::protobuf;

/// The codes of the types that this node sends. There is no UInt32 among them: readers disagree about the field of its value.
enum class DataType : std::uint32_t { Int32 = 3, Int64 = 4, Double = 10, Boolean = 11, String = 12 };

/// What a value is worth, as the property "Quality" has it.
enum class Quality : std::uint32_t { Bad = 0, Good = 192, Stale = 500 };

struct MetricDefinition {
    std::string name; ///< "state/servo", "B005": reading, and field if it has several
    DataType type = DataType::Int64;
    std::string unit; ///< empty: none
};

/// The metrics of a device: those of its readings, one after the other.
class MetricTable {
public:
    /// The first metric gets `firstAlias`, the others the numbers behind it.
    MetricTable(Controller const& controller, std::uint64_t firstAlias);
    MetricTable(MetricTable const&) = delete;
    MetricTable& operator=(MetricTable const&) = delete;
    ~MetricTable() = default;

    std::size_t Size() const { return metrics_.size(); }
    MetricDefinition const& At(std::size_t metric) const { return metrics_[metric]; }
    std::uint64_t AliasOf(std::size_t metric) const { return firstAlias_ + metric; }
    /// The place of a reading's first item.
    std::size_t FirstOf(std::uint32_t reading) const { return firstOf_[reading]; }
    /// Size() if there is none of this name.
    std::size_t Find(std::string_view name) const;

private:
    std::vector<MetricDefinition> metrics_;
    std::vector<std::size_t> firstOf_;
    std::unordered_map<std::string_view, std::size_t> places_; ///< by the names in metrics_
    std::uint64_t firstAlias_;
};

/// Gives a metric its value, or is_null if it has none. A number that is not finite is null and of bad quality.
void SetValue(proto::Metric& metric, DataType type, recording::RecordedValue const& value, Quality quality);

/// Adds a property of type String.
void AddProperty(proto::Metric& metric, std::string_view key, std::string_view value);

/// What a birth says of a metric besides its value.
void Define(proto::Metric& metric, MetricDefinition const& definition);

} // namespace harvlink::gateway::sparkplug
