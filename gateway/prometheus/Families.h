#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "gateway/model/Observer.h"
#include "gateway/prometheus/Definitions.h"
#include "gateway/prometheus/RoundTrips.h"
#include "gateway/prometheus/SeriesPlan.h"

namespace harvlink::gateway {

/// The series of one answer. A series refers to names and labels of its caller, which must stay until Text has returned: with
/// tens of thousands of series, their strings are most of the work. What exceeds the limit is counted and left out.
class Families {
public:
    explicit Families(std::size_t mostSeries);

    void Set(Metric metric, double value, std::string_view controller = {}) { Set(metric, value, controller, none_); }
    void Set(Metric metric, double value, std::string_view controller, Labels const& labels);

    /// As Set, of labels that the caller does not keep.
    void SetOnce(Metric metric, double value, std::string_view controller, Labels labels);

    void SetHistogram(Metric metric, std::string_view controller, RoundTrips::Counts const& counts);

    void Set(Figure const& figure);

    /// `sizeBefore` is that of the last text, which the next one is like.
    std::string Text(std::size_t sizeBefore);

private:
    struct Value {
        std::string_view controller; ///< may be empty
        Labels const* labels = nullptr;
        double number = 0.0;
        RoundTrips::Counts const* counts = nullptr; ///< of a histogram
    };
    struct Family {
        std::string name;
        std::string help;
        MetricKind kind = MetricKind::Gauge;
        std::vector<Value> values;
    };

    bool HasRoom(std::size_t series);

    std::size_t most_;
    std::size_t series_ = 0;
    std::size_t dropped_ = 0;
    std::vector<Family> families_; ///< by Metric, then those of figures
    std::unordered_map<std::string, std::size_t> figures_; ///< places by name
    std::deque<Labels> kept_; ///< never moves what it has
    Labels const none_;
};

} // namespace harvlink::gateway
