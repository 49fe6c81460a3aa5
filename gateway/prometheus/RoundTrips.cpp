#include "gateway/prometheus/RoundTrips.h"

#include <algorithm>

namespace harvlink::gateway {

void RoundTrips::Added(ControllerPtr const& controller) {
    std::scoped_lock const lock(mutex_);
    counts_[controller->id] = {};
}

void RoundTrips::Removed(ControllerPtr const& controller) {
    std::scoped_lock const lock(mutex_);
    counts_.erase(controller->id);
}

void RoundTrips::Take(Batch const& batch) {
    std::scoped_lock const lock(mutex_);
    samples_ += batch.samples.size();
    for (SamplePtr const& sample : batch.samples) {
        auto const found = counts_.find(sample->controller->id);
        bool const isAnswer = sample->moment.quality == recording::RecordedQuality::Good;
        if (found == counts_.end() || !isAnswer || sample->moment.request == found->second.lastRequest) {
            continue;
        }
        Counts& counts = found->second;
        // The clock may have been set between the two.
        auto const time = std::max<recording::Microseconds>(sample->moment.answer - sample->moment.request, 0);
        double const seconds = static_cast<double>(time) / 1e6;
        auto const* const bucket = std::lower_bound(Bounds.begin(), Bounds.end(), seconds);
        ++counts.buckets.at(static_cast<std::size_t>(bucket - Bounds.begin()));
        ++counts.count;
        counts.sum += seconds;
        counts.last = time;
        counts.lastRequest = sample->moment.request;
    }
}

std::map<std::uint32_t, RoundTrips::Counts> RoundTrips::All() const {
    std::scoped_lock const lock(mutex_);
    return counts_;
}

std::uint64_t RoundTrips::Samples() const {
    std::scoped_lock const lock(mutex_);
    return samples_;
}

} // namespace harvlink::gateway
