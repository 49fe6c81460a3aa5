#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "gateway/model/Batch.h"
#include "gateway/prometheus/Definitions.h"

namespace harvlink::gateway {

using Labels = std::vector<std::pair<std::string, std::string>>;

/// A number of a reading that becomes a series.
struct Series {
    Metric metric{};
    Labels labels; ///< besides the controller
    std::size_t item = 0; ///< of the reading
    double factor = 1.0; ///< to the unit of the metric

    bool operator==(Series const&) const = default;
};

/// The series of each reading that are numbers, found once for each controller. No two are the same: what two readings have in
/// common is taken from the first. Texts, modes and alarms make series by their values, see ValueSeries.
std::vector<std::vector<Series>> SeriesOf(Controller const& controller);

/// The series that are named by the values of a good sample: mode, job, alarms, software. Their value is 1.
std::vector<std::pair<Metric, Labels>> ValueSeries(Sample const& sample);

} // namespace harvlink::gateway
