#include "gateway/sparkplug/Device.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "gateway/sparkplug/Ids.h"

namespace harvlink::gateway::sparkplug {

namespace {

/// Within this, samples of a reading that have the same millisecond get one after the other; further back the clock was set.
constexpr Timestamp SameMoment = 5;

Timestamp TimeOf(Sample const& sample) {
    return static_cast<Timestamp>(std::max<recording::Microseconds>(0, sample.moment.answer) / 1000);
}

bool IsSame(recording::RecordedValue const& left, recording::RecordedValue const& right) {
    auto const* const before = std::get_if<double>(&left);
    auto const* const after = std::get_if<double>(&right);
    if (before != nullptr && after != nullptr && std::isnan(*before) && std::isnan(*after)) {
        return true; // otherwise each would be a change
    }
    return left == right;
}

bool IsAnswer(Sample const& sample, std::size_t items) {
    using recording::RecordedQuality;
    return (sample.moment.quality == RecordedQuality::Good && sample.values.size() == items) ||
           sample.moment.quality == RecordedQuality::Refused;
}

} // namespace

Timestamp Now() {
    auto const now = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<Timestamp>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

Device::Device(ControllerPtr controller, std::uint64_t firstAlias)
    : controller_(std::move(controller)),
      id_(DeviceIdOf(controller_->name)),
      metrics_(*controller_, firstAlias),
      latest_(controller_->readings.size()) {}

std::optional<Change> Device::Take(SamplePtr const& sample) {
    if (sample->reading >= latest_.size()) {
        return std::nullopt;
    }
    std::size_t const items = controller_->readings[sample->reading].items.size();
    if (!IsAnswer(*sample, items)) {
        return std::nullopt;
    }
    Latest& latest = latest_[sample->reading];
    Change change{.sample = sample, .time = TimeOf(*sample), .items = {}};
    bool const isComparable = latest.sample != nullptr && latest.sample->moment.quality == sample->moment.quality &&
                              latest.sample->values.size() == sample->values.size();
    for (std::size_t i = 0; i < items; ++i) {
        change.items.set(i, !isComparable ||
                                (!sample->values.empty() && !IsSame(latest.sample->values[i], sample->values[i])));
    }
    // A consumer tells values apart by metric and time.
    if (latest.sample != nullptr && change.time + SameMoment > TimeOf(*latest.sample)) {
        change.time = std::max(change.time, latest.time + (change.items.any() ? 1 : 0));
    }
    latest = {sample, change.time};
    return change.items.any() ? std::optional(std::move(change)) : std::nullopt;
}

bool Device::IsLatest(Change const& change) const {
    return latest_[change.sample->reading].sample == change.sample;
}

void Device::FillValue(proto::Metric& metric, Sample const& sample, std::size_t item, Quality worth) const {
    bool const isRefused = sample.moment.quality == recording::RecordedQuality::Refused;
    auto const& definition = metrics_.At(metrics_.FirstOf(sample.reading) + item);
    SetValue(metric, definition.type, isRefused ? recording::RecordedValue{} : sample.values[item],
             isRefused ? Quality::Bad : worth);
}

std::vector<Change> Device::Known(std::vector<Change> const& earlier) const {
    std::vector<Change> known = earlier;
    for (std::uint32_t reading = 0; reading < latest_.size(); ++reading) {
        bool const isEarlier = std::any_of(earlier.begin(), earlier.end(),
                                           [&](Change const& change) { return change.sample->reading == reading; });
        if (latest_[reading].sample != nullptr && !isEarlier) {
            known.push_back({.sample = latest_[reading].sample, .time = latest_[reading].time, .items = {}});
        }
    }
    return known;
}

void Device::AddBirth(proto::Payload& payload, Timestamp now, Quality worth, std::vector<Change> const& earlier) const {
    std::vector<Latest> known = latest_;
    for (Change const& change : earlier) {
        known[change.sample->reading] = {change.sample, change.time};
    }
    std::vector<std::uint32_t> order(known.size());
    std::iota(order.begin(), order.end(), 0U);
    auto const timeOf = [&](std::uint32_t reading) {
        return known[reading].sample != nullptr ? known[reading].time : now;
    };
    std::stable_sort(order.begin(), order.end(),
                     [&](std::uint32_t left, std::uint32_t right) { return timeOf(left) < timeOf(right); });
    for (std::uint32_t const reading : order) {
        auto const& sample = known[reading].sample;
        for (std::size_t item = 0; item < controller_->readings[reading].items.size(); ++item) {
            std::size_t const place = metrics_.FirstOf(reading) + item;
            proto::Metric& metric = *payload.add_metrics();
            Define(metric, metrics_.At(place));
            metric.set_alias(metrics_.AliasOf(place));
            metric.set_timestamp(timeOf(reading));
            if (sample != nullptr) {
                FillValue(metric, *sample, item, worth);
            } else {
                metric.set_is_null(true);
            }
        }
    }
}

void Device::AddData(proto::Payload& payload, Change const& change) const {
    std::size_t const first = metrics_.FirstOf(change.sample->reading);
    std::size_t const items = controller_->readings[change.sample->reading].items.size();
    for (std::size_t item = 0; item < items; ++item) {
        if (change.items.test(item)) {
            proto::Metric& metric = *payload.add_metrics();
            metric.set_alias(metrics_.AliasOf(first + item));
            metric.set_timestamp(change.time);
            FillValue(metric, *change.sample, item, Quality::Good);
        }
    }
}

std::string Device::StoredForm(Change const& change) const {
    proto::Payload payload;
    AddData(payload, change);
    for (proto::Metric& metric : *payload.mutable_metrics()) {
        metric.set_name(metrics_.At(metric.alias() - metrics_.AliasOf(0)).name);
        metric.clear_alias();
    }
    payload.set_uuid(id_);
    return payload.SerializeAsString();
}

std::size_t AddHistorical(proto::Payload& payload, Device const& device, proto::Payload const& stored) {
    std::size_t leftOut = 0;
    for (proto::Metric const& metric : stored.metrics()) {
        std::size_t const place = device.Metrics().Find(metric.name());
        if (place == device.Metrics().Size()) {
            ++leftOut;
            continue;
        }
        proto::Metric& historical = *payload.add_metrics();
        historical = metric;
        historical.clear_name();
        historical.set_alias(device.Metrics().AliasOf(place));
        historical.set_is_historical(true);
    }
    return leftOut;
}

} // namespace harvlink::gateway::sparkplug
