#include "gateway/watch/Interim.h"

#include <utility>

namespace harvlink::gateway {

void Interim::Added(ControllerPtr const& controller) {
    kept_.push_back({.added = controller, .removed = {}, .samples = {}, .events = {}});
}

void Interim::Removed(ControllerPtr const& controller) {
    kept_.push_back({.added = {}, .removed = controller, .samples = {}, .events = {}});
}

void Interim::Take(Batch const& batch) {
    if (batch.samples.empty() && batch.events.empty() && batch.droppedSamples == 0) {
        return;
    }
    Kept kept{.added = {}, .removed = {}, .samples = {}, .events = {}, .droppedSamples = batch.droppedSamples};
    if (samples_ + batch.samples.size() <= MostSamples) {
        kept.samples.assign(batch.samples.begin(), batch.samples.end());
        samples_ += kept.samples.size();
    } else {
        kept.droppedSamples += batch.samples.size();
    }
    kept.events.assign(batch.events.begin(), batch.events.end());
    kept_.push_back(std::move(kept));
}

void Interim::GiveTo(Observer& next) const {
    for (Kept const& kept : kept_) {
        if (kept.added != nullptr) {
            next.Added(kept.added);
        } else if (kept.removed != nullptr) {
            next.Removed(kept.removed);
        } else {
            next.Take({kept.samples, kept.events, kept.droppedSamples});
        }
    }
}

} // namespace harvlink::gateway
