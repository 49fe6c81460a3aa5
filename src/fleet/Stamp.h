#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "harvlink/Fleet.h"

namespace harvlink::fleet {

/// What is known of a record besides its bytes.
struct Stamp {
    static constexpr std::size_t words = 3;

    std::int64_t answerTime = 0; ///< nanoseconds since the epoch
    std::uint32_t roundTrip = 0; ///< microseconds
    std::int32_t code = 0;
    std::uint16_t size = 0; ///< of the record
    FleetQuality quality = FleetQuality::NeverRead;

    std::array<std::uint64_t, words> Pack() const {
        return {static_cast<std::uint64_t>(answerTime),
                roundTrip | std::uint64_t{static_cast<std::uint32_t>(code)} << 32U,
                size | std::uint64_t{static_cast<std::uint32_t>(quality)} << 32U};
    }

    static Stamp Unpack(std::array<std::uint64_t, words> const& packed) {
        Stamp stamp;
        stamp.answerTime = static_cast<std::int64_t>(packed[0]);
        stamp.roundTrip = static_cast<std::uint32_t>(packed[1]);
        stamp.code = static_cast<std::int32_t>(packed[1] >> 32U);
        stamp.size = static_cast<std::uint16_t>(packed[2]);
        stamp.quality = static_cast<FleetQuality>(packed[2] >> 32U);
        return stamp;
    }
};

} // namespace harvlink::fleet
