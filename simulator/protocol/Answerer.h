#pragma once

#include "simulator/protocol/Reply.h"
#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

/// Answers in place of the controller, as a recording does.
class Answerer {
public:
    Answerer() = default;
    Answerer(Answerer const&) = delete;
    Answerer& operator=(Answerer const&) = delete;
    virtual ~Answerer() = default;

    /// Makes the reply and returns true, or leaves the request to the controller. Called by one thread at a time.
    virtual bool Answer(Request const& request, Reply& reply) = 0;
};

} // namespace harvlink::simulator
