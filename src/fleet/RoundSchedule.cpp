#include "fleet/RoundSchedule.h"

namespace harvlink::fleet {

void RoundSchedule::Begin(std::int64_t now) {
    due += (now - due) / group->period * group->period;
    if (begunAt != 0) {
        std::int64_t const interval = now - begunAt;
        auto const mean = static_cast<std::int64_t>(group->interval.Get());
        group->interval.Set(static_cast<std::uint64_t>(mean == 0 ? interval : mean + (interval - mean) / roundsOfMean));
    }
    begunAt = now;
    isActive = true;
}

bool RoundSchedule::Finish(std::int64_t now) {
    isActive = false;
    due += group->period;
    group->rounds.Add();
    group->lastRound.Set(static_cast<std::uint64_t>(now - begunAt));
    bool const isBehind = due <= now;
    bool const isSlow = now - begunAt > group->period;
    bool const isLate = isBehind && (isSlow || !isExcused);
    if (isLate) {
        group->overruns.Add();
    }
    isExcused = isBehind && !isLate;
    return isLate;
}

} // namespace harvlink::fleet
