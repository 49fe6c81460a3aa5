#pragma once

#include <vector>

#include "recording/read/Recording.h"

namespace harvlink::recording {

/// What is known of each reading, change by change.
class KnownState {
public:
    explicit KnownState(Catalogue const& catalogue) {
        samples_.resize(catalogue.readings.size());
        for (std::size_t i = 0; i < samples_.size(); ++i) {
            samples_[i].reading = static_cast<std::uint32_t>(i + 1);
            samples_[i].moment.quality = RecordedQuality::NeverRead;
            samples_[i].values.resize(catalogue.readings[i].items.size());
        }
    }

    /// Returns the whole reading after the change.
    RecordedSample const& Apply(Change const& change) {
        RecordedSample& sample = samples_[change.reading - 1];
        sample.moment = change.moment;
        for (auto const& [place, value] : change.values) {
            sample.values[static_cast<std::size_t>(place)] = value;
        }
        return sample;
    }

    /// By reading. Values of a quality other than good are the last that were.
    std::vector<RecordedSample> const& Samples() const { return samples_; }

private:
    std::vector<RecordedSample> samples_;
};

} // namespace harvlink::recording
