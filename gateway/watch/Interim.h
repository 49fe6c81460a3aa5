#pragma once

#include <cstdint>
#include <vector>

#include "gateway/model/Observer.h"

namespace harvlink::gateway {

/// Takes the place of an observer that has ended, until there is a new one. It keeps what comes meanwhile, with as many samples as
/// MostSamples says, and gives it to the new one.
class Interim : public Observer {
public:
    void Added(ControllerPtr const& controller) override;
    void Removed(ControllerPtr const& controller) override;
    void Take(Batch const& batch) override;

    /// Gives `next` all that came, in its order. Called where it gets it, too: by the dispatcher.
    void GiveTo(Observer& next) const;

private:
    struct Kept {
        ControllerPtr added;
        ControllerPtr removed;
        std::vector<SamplePtr> samples;
        std::vector<Event> events;
        std::uint64_t droppedSamples = 0;
    };

    static constexpr std::size_t MostSamples = 1U << 18;

    std::vector<Kept> kept_;
    std::size_t samples_ = 0;
};

} // namespace harvlink::gateway
