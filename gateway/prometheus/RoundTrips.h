#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <mutex>

#include "gateway/model/Observer.h"

namespace harvlink::gateway {

/// Counts how long answers took. Items that one answer brought count once.
class RoundTrips : public Observer {
public:
    static constexpr std::array<double, 9> Bounds{0.001, 0.002, 0.005, 0.01, 0.02, 0.05, 0.1, 0.2, 0.5}; ///< seconds

    struct Counts {
        std::array<std::uint64_t, Bounds.size() + 1> buckets{}; ///< the last is for what took longer
        std::uint64_t count = 0;
        double sum = 0.0; ///< seconds
        recording::Microseconds lastRequest = 0;
        recording::Microseconds last = 0; ///< the last round trip
    };

    void Added(ControllerPtr const& controller) override;
    void Removed(ControllerPtr const& controller) override;
    void Take(Batch const& batch) override;

    std::map<std::uint32_t, Counts> All() const; ///< by id of the controller
    std::uint64_t Samples() const;

private:
    mutable std::mutex mutex_;
    std::map<std::uint32_t, Counts> counts_;
    std::uint64_t samples_ = 0;
};

} // namespace harvlink::gateway
