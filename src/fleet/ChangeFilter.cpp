#include "fleet/ChangeFilter.h"

#include <algorithm>
#include <cmath>

#include "fleet/Record.h"

namespace harvlink::fleet {
namespace {

using Numbers = std::array<double, 8>;

Numbers NumbersOf(FleetValue const& value) {
    Numbers numbers{};
    if (auto const* const integer = std::get_if<std::int64_t>(&value)) {
        numbers[0] = static_cast<double>(*integer);
    } else if (auto const* const real = std::get_if<double>(&value)) {
        numbers[0] = *real;
    } else if (auto const* const position = std::get_if<PositionData>(&value)) {
        numbers = position->axes;
    } else if (auto const* const torque = std::get_if<TorqueData>(&value)) {
        std::ranges::copy(torque->axes, numbers.begin());
    } else if (auto const* const error = std::get_if<PositionErrorData>(&value)) {
        std::ranges::copy(error->axes, numbers.begin());
    }
    return numbers;
}

/// Not a number is far from everything but itself.
bool IsFar(double before, double now, double width) {
    return std::isnan(before) != std::isnan(now) || std::abs(before - now) > width;
}

} // namespace

ChangeFilter::ChangeFilter(ControllerRecord const& watched) : controller(watched), reported(watched.deadBands.size()) {
    if (std::ranges::any_of(watched.groups, [](Group const& group) { return group.longestSilence > 0; })) {
        reportedAt.resize(watched.items.size());
    }
}

bool ChangeFilter::Passes(std::uint32_t item, Stamped const& before, Stamped const& now) {
    Group const& group = controller.groups[controller.items[item].group];
    // Asked first, as it notes what it lets through.
    bool const hasChanged = !group.onChange || HasChanged(item, before, now);
    if (!hasChanged && !HasBeenSilentForLong(item, now.stamp.answerTime)) {
        return false;
    }
    if (!reportedAt.empty()) {
        reportedAt[item] = now.stamp.answerTime;
    }
    return true;
}

bool ChangeFilter::HasChanged(std::uint32_t item, Stamped const& before, Stamped const& now) {
    if (before.stamp.quality != now.stamp.quality || before.stamp.code != now.stamp.code) {
        (void)LeavesDeadBand(item, now);
        return true;
    }
    if (controller.items[item].hasDeadBand) {
        return LeavesDeadBand(item, now);
    }
    return !std::ranges::equal(before.record, now.record);
}

bool ChangeFilter::LeavesDeadBand(std::uint32_t item, Stamped const& now) {
    if (!controller.items[item].hasDeadBand || now.stamp.quality != FleetQuality::Good) {
        return false;
    }
    auto const band = std::ranges::lower_bound(controller.deadBands, item, {}, &DeadBand::item);
    Reported& last = reported[static_cast<std::size_t>(band - controller.deadBands.begin())];
    Numbers const numbers = NumbersOf(ReadRecord(controller.items[item], now.record).value);
    bool const leaves = !last.isSet || !std::ranges::equal(last.numbers, numbers, [&](double old, double fresh) {
        return !IsFar(old, fresh, band->width);
    });
    if (leaves) {
        last = {numbers, true};
    }
    return leaves;
}

/// By the clock of the computer: one that is set back only makes a sample come early or late once.
bool ChangeFilter::HasBeenSilentForLong(std::uint32_t item, std::int64_t time) const {
    Group const& group = controller.groups[controller.items[item].group];
    return group.longestSilence > 0 && std::abs(time - reportedAt[item]) >= group.longestSilence;
}

} // namespace harvlink::fleet
