#include "gateway/sparkplug/Backoff.h"

#include <algorithm>

namespace harvlink::gateway::sparkplug {

Milliseconds Backoff::Next(Failure failure) {
    bool const isUnreachable = failure == Failure::Unreachable;
    Milliseconds const longest = isUnreachable ? LongestUnreachable : Longest;
    Milliseconds const delay = failure == Failure::Refused ? Longest : std::min(next_, longest);
    // A long time out of reach does not lengthen the rest after being thrown out.
    next_ = std::max(next_, std::min(delay * 2, longest));
    std::uniform_int_distribution<int> jitter(80, 120);
    Milliseconds const spread = delay * jitter(random_) / 100;
    // The return of a broker must not be missed for long.
    return isUnreachable ? std::min(spread, LongestUnreachable) : spread;
}

} // namespace harvlink::gateway::sparkplug
