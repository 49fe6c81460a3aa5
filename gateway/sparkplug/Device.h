#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "gateway/model/Batch.h"
#include "gateway/sparkplug/Metrics.h"

namespace harvlink::gateway::sparkplug {

/// Milliseconds UTC since 1970.
using Timestamp = std::uint64_t;

Timestamp Now();

/// What a sample changed.
struct Change {
    SamplePtr sample;
    Timestamp time = 0; ///< of every change of the reading another one, until the clock is set back
    std::bitset<recording::RecordedReading::MostItems> items; ///< those that changed
};

/// A controller as a device: its metrics and their latest values. For one thread.
class Device {
public:
    Device(ControllerPtr controller, std::uint64_t firstAlias);

    std::string const& Id() const { return id_; }
    ControllerPtr const& Source() const { return controller_; }
    MetricTable const& Metrics() const { return metrics_; }

    /// Keeps the sample as the latest of its reading. Nothing if it changes nothing, or if it is not an answer: a controller that
    /// does not answer keeps its values until its death is told.
    std::optional<Change> Take(SamplePtr const& sample);

    /// Whether `change` is the latest of its reading, so that a birth has its values.
    bool IsLatest(Change const& change) const;

    /// The latest of each reading that was read, or its change in `earlier`.
    std::vector<Change> Known(std::vector<Change> const& earlier) const;

    /// All metrics in order of time, with the latest values, or of readings that are in `earlier` those of then; what was never
    /// read is null. `worth` is Stale if the controller does not answer.
    void AddBirth(proto::Payload& payload, Timestamp now, Quality worth, std::vector<Change> const& earlier) const;

    /// The changed metrics by their aliases.
    void AddData(proto::Payload& payload, Change const& change) const;

    /// A change for the store. It names everything, as aliases last no longer than this program.
    std::string StoredForm(Change const& change) const;

private:
    struct Latest {
        SamplePtr sample;
        Timestamp time = 0;
    };

    void FillValue(proto::Metric& metric, Sample const& sample, std::size_t item, Quality worth) const;

    ControllerPtr controller_;
    std::string id_;
    MetricTable metrics_;
    std::vector<Latest> latest_;
};

/// Adds what StoredForm made to `payload`, as historical and by the aliases of `device`. Returns how many metrics were left out
/// because the device does not have them any more.
std::size_t AddHistorical(proto::Payload& payload, Device const& device, proto::Payload const& stored);

} // namespace harvlink::gateway::sparkplug
