#pragma once

#include <compare>
#include <cstdint>
#include <vector>

#include "recording/model/Records.h"
#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

/// What a request asks for: equal for requests that the same reading answers.
struct RequestKey {
    std::uint16_t command = 0;
    std::uint16_t instance = 0;
    std::uint64_t detail = 0; ///< of those that ask by their payload

    // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the spaceship's literal zero for a pointer
    auto operator<=>(RequestKey const&) const = default;
};

RequestKey KeyOf(Request const& request);

/// All requests that a reading answers, on an old or a new controller.
std::vector<RequestKey> KeysOf(recording::RecordedReading const& reading);

} // namespace harvlink::simulator
