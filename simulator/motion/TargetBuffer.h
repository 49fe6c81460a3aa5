#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

#include "simulator/motion/TargetPlanner.h"

namespace harvlink::simulator {

/// The moves of up to four groups, by motion slot. They start together. The next step starts when all have ended.
struct PlannedStep {
    std::array<std::optional<PlannedMove>, MotionSlots> moves{};

    bool IsEmpty() const {
        return std::ranges::none_of(moves, [](auto const& move) { return move.has_value(); });
    }
};

/// The steps to be played. The front step is the one being played.
class TargetBuffer {
public:
    static constexpr std::size_t Capacity = 24;

    std::size_t Size() const { return size_; }
    bool IsEmpty() const { return size_ == 0; }
    bool IsFull() const { return size_ == Capacity; }

    /// There must be room.
    void Push(PlannedStep const& step) { steps_[(first_ + size_++) % Capacity] = step; }

    /// From the front; `index` is below Size.
    PlannedStep& operator[](std::size_t index) { return steps_[(first_ + index) % Capacity]; }

    /// There must be a step.
    void PopFront() {
        first_ = (first_ + 1) % Capacity;
        --size_;
    }

    /// Removes the moves of a slot from the steps from `from` on, and the steps that are empty then.
    void RemoveSlot(std::size_t slot, std::size_t from) {
        std::size_t kept = from;
        for (std::size_t i = from; i < size_; ++i) {
            PlannedStep step = (*this)[i];
            step.moves[slot].reset();
            if (!step.IsEmpty()) {
                (*this)[kept++] = step;
            }
        }
        size_ = kept;
    }

private:
    std::array<PlannedStep, Capacity> steps_{};
    std::size_t first_ = 0;
    std::size_t size_ = 0;
};

} // namespace harvlink::simulator
