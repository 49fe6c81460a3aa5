#include "fleet/Query.h"

#include "fleet/ItemRequest.h"

namespace harvlink::fleet {

// What writes does not get through, whatever its fields say.
static_assert(!ReadRequest<JobSelectRequest> && !ReadRequest<SignalWrite> && !ReadRequest<MotionStartRequest> &&
              !ReadRequest<VariableWrite<std::uint8_t>> && !ReadRequest<AlarmResetRequest>);

Query QueryFor(Item const& item, unsigned part, ControllerFacts const& facts) {
    return WithRequest(item, part, facts, [](auto const& request) { return QueryOf(request); });
}

} // namespace harvlink::fleet
