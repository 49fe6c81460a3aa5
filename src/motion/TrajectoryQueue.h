#pragma once

#include <atomic>
#include <cstdint>
#include <list>
#include <vector>

#include "motion/MotionStep.h"

namespace harvlink {

/// The steps that wait to be sent, without a limit. Its owner guards it with a mutex; only IsEmpty may be called without.
///
/// A step is held as a run of its groups rather than with room for four: one group takes less than 200 bytes. The runs
/// stand in blocks that never move, so that adding a step allocates seldom and copies nothing else.
class TrajectoryQueue {
public:
    bool IsEmpty() const { return isEmpty.load(); }

    /// Returns the number of the step: 1, 2, 3 and so on. Strong guarantee: if memory runs out the queue is as it was.
    std::uint64_t PushBack(MotionStep const& step);

    /// Copies the front step; the queue must not be empty.
    MotionStep Front() const;
    std::uint64_t FrontNumber() const { return frontNumber; } ///< of the next step to come if the queue is empty
    std::uint64_t LastNumber() const { return lastNumber; } ///< 0 if none was ever queued
    void PopFront(); ///< Nothing happens on an empty queue.
    void Clear();

private:
    /// A group's part of a step. A step without groups is one part that holds none.
    struct Part {
        Target target;
        TargetProfile profile;
        TargetControlGroup group = TargetControlGroup::GroupNotFound;
        bool isLastOfStep = true;
    };
    using Block = std::vector<Part>; ///< never beyond the room it was made with; a step's parts share one

    Block& BlockWithRoom();

    std::list<Block> blocks;
    std::size_t sent = 0; ///< parts of the front block that are gone
    std::uint64_t frontNumber = 1;
    std::uint64_t lastNumber = 0;
    /// In one order with the flag of a sleeping monitor: either it sees the step, or the adding thread sees it asleep.
    std::atomic<bool> isEmpty = true;
};

} // namespace harvlink
