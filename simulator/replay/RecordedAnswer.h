#pragma once

#include <span>

#include "recording/model/Records.h"
#include "simulator/protocol/Reply.h"
#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

/// A reading and what was known of it.
struct RecordedAnswer {
    recording::RecordedReading const* reading = nullptr;
    recording::RecordedSample const* sample = nullptr;
};

/// Sets the payload of a reply from all readings that the request asks for: several if each is one axis or one signal. All of
/// them have values.
void SetPayload(Request const& request, std::span<RecordedAnswer const> answers, Reply& reply);

} // namespace harvlink::simulator
