#include "motion/TrajectoryQueue.h"

#include <algorithm>

namespace harvlink {
namespace {

constexpr std::size_t smallestBlock = 4 * MotionSlots;
constexpr std::size_t largestBlock = 256;

} // namespace

TrajectoryQueue::Block& TrajectoryQueue::BlockWithRoom() {
    if (!blocks.empty() && blocks.back().capacity() - blocks.back().size() >= MotionSlots) {
        return blocks.back();
    }
    Block block;
    block.reserve(blocks.empty() ? smallestBlock : std::min(2 * blocks.back().capacity(), largestBlock));
    return blocks.emplace_back(std::move(block));
}

std::uint64_t TrajectoryQueue::PushBack(MotionStep const& step) {
    Block& block = BlockWithRoom();
    for (std::size_t slot = 0; slot < MotionSlots; ++slot) {
        if (step.groups[slot]) {
            block.push_back({step.targets[slot], step.profiles[slot], static_cast<TargetControlGroup>(slot), false});
        }
    }
    if (step.groups.none()) {
        block.emplace_back();
    }
    block.back().isLastOfStep = true;
    isEmpty.store(false);
    return ++lastNumber;
}

MotionStep TrajectoryQueue::Front() const {
    MotionStep step;
    for (auto part = blocks.front().begin() + static_cast<std::ptrdiff_t>(sent);; ++part) {
        if (part->group != TargetControlGroup::GroupNotFound) {
            auto const slot = static_cast<std::size_t>(part->group);
            step.groups.set(slot);
            step.targets[slot] = part->target;
            step.profiles[slot] = part->profile;
        }
        if (part->isLastOfStep) {
            return step;
        }
    }
}

void TrajectoryQueue::PopFront() {
    if (isEmpty.load(std::memory_order_relaxed)) {
        return;
    }
    ++frontNumber;
    while (!blocks.front()[sent++].isLastOfStep) {
    }
    if (sent < blocks.front().size()) {
        return;
    }
    sent = 0;
    if (blocks.size() > 1) {
        blocks.pop_front();
    } else {
        blocks.front().clear(); // keeps its memory for the next steps
    }
    isEmpty.store(blocks.front().empty(), std::memory_order_release);
}

void TrajectoryQueue::Clear() {
    blocks.clear();
    sent = 0;
    frontNumber = lastNumber + 1;
    isEmpty.store(true, std::memory_order_release);
}

} // namespace harvlink
