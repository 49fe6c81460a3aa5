#pragma once

#include <cstdint>

#include "fleet/ControllerRecord.h"

namespace harvlink::fleet {

/// Where in its period a group has its rounds, so that not all controllers are asked at once. By the golden section: however
/// many phases there are, the next one falls into a large gap.
inline std::int64_t PhaseOf(std::uint32_t number, std::int64_t period) {
    constexpr std::uint32_t goldenSection = 2654435769U;
    constexpr std::int64_t steps = std::int64_t{1} << 16U;
    std::int64_t const step = (number * goldenSection >> 16U) + 1;
    return period / steps * step + period % steps * step / steps;
}

/// When the rounds of a group begin. They are due at the points of a grid, a period apart, so they do not drift. A round that
/// is not finished at the next point is followed at once by one for the latest point that has passed: the group runs at the
/// rate that is possible, and nothing queues.
class RoundSchedule {
public:
    explicit RoundSchedule(Group& ownGroup) : group(&ownGroup) {}

    /// The first round is due now. The grid has a point `phase` later, within a period.
    void Start(std::int64_t now, std::int64_t phase) {
        due = now + phase - group->period;
        isExcused = true;
        isActive = false;
        begunAt = 0;
    }

    bool IsActive() const { return isActive; }
    std::int64_t Due() const { return due; }

    /// By when a round that is under way has to be finished.
    std::int64_t End() const { return due + group->period; }

    /// Called when a round is due and none is under way.
    void Begin(std::int64_t now);

    /// Called when it is finished. @return whether the next one should have begun already
    bool Finish(std::int64_t now);

    /// The engine itself did not run for so long: what is late, until the rounds are on the grid again, is nobody's fault.
    void Excuse(std::int64_t nanoseconds) {
        isExcused = true;
        begunAt += begunAt != 0 ? nanoseconds : 0;
    }

private:
    static constexpr std::int64_t roundsOfMean = 8;

    Group* group;
    std::int64_t due = 0; ///< the point of the round that is under way, or else of the next
    std::int64_t begunAt = 0;
    bool isActive = false;
    bool isExcused = true;
};

} // namespace harvlink::fleet
