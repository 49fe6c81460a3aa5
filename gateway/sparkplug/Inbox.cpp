#include "gateway/sparkplug/Inbox.h"

#include <utility>

namespace harvlink::gateway::sparkplug {

void Inbox::Add(Delivery delivery) {
    std::scoped_lock const lock(mutex_);
    if (samples_ + delivery.samples.size() > MostSamples) {
        dropped_ += delivery.samples.size();
        delivery.samples.clear();
    }
    samples_ += delivery.samples.size();
    deliveries_.push_back(std::move(delivery));
}

std::vector<Delivery> Inbox::TakeAll() {
    std::scoped_lock const lock(mutex_);
    samples_ = 0;
    return std::exchange(deliveries_, {});
}

std::uint64_t Inbox::Dropped() const {
    std::scoped_lock const lock(mutex_);
    return dropped_;
}

} // namespace harvlink::gateway::sparkplug
