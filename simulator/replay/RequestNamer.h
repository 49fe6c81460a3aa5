#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "recording/model/Records.h"
#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

/// A request by which its answer is found: the same request has the same text whenever it is sent, whatever its number is.
struct NamedRequest {
    std::string text;
    std::string opening; ///< the text of the request that opened the file transfer, in a later one; else empty
};

/// Names requests, which it has to see in their order: what belongs to a file transfer says only the number of a block.
class RequestNamer {
public:
    NamedRequest Name(Request const& request);

    /// Call after Name. The time at which the answer counts: that of the request, or that of the one that opened its file
    /// transfer, because the blocks of a file belong together.
    recording::Microseconds TimeOf(Request const& request, recording::Microseconds now);

private:
    struct Transfer {
        std::string opening;
        recording::Microseconds time = 0;
    };
    std::map<std::uint64_t, Transfer> transfers_; ///< by client
};

} // namespace harvlink::simulator
