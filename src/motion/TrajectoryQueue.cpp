#include "motion/TrajectoryQueue.h"

namespace harvlink {

void TrajectoryQueue::PushBack(MotionStep const& step) {
    std::size_t const oldSize = parts.size();
    try {
        for (std::size_t slot = 0; slot < MotionSlots; ++slot) {
            if (step.groups[slot]) {
                parts.push_back(
                    {step.targets[slot], step.profiles[slot], static_cast<TargetControlGroup>(slot), false});
            }
        }
        if (parts.size() == oldSize) {
            parts.emplace_back();
        }
    } catch (...) {
        parts.resize(oldSize);
        throw;
    }
    parts.back().isLastOfStep = true;
    isEmpty.store(false, std::memory_order_release);
}

MotionStep TrajectoryQueue::Front() const {
    MotionStep step;
    for (Part const& part : parts) {
        if (part.group != TargetControlGroup::GroupNotFound) {
            auto const slot = static_cast<std::size_t>(part.group);
            step.groups.set(slot);
            step.targets[slot] = part.target;
            step.profiles[slot] = part.profile;
        }
        if (part.isLastOfStep) {
            break;
        }
    }
    return step;
}

void TrajectoryQueue::PopFront() {
    for (bool isLast = false; !isLast && !parts.empty(); parts.pop_front()) {
        isLast = parts.front().isLastOfStep;
    }
    isEmpty.store(parts.empty(), std::memory_order_release);
}

void TrajectoryQueue::Clear() {
    parts.clear();
    isEmpty.store(true, std::memory_order_release);
}

} // namespace harvlink
