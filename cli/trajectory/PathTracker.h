#pragma once

#include <array>
#include <chrono>
#include <vector>

#include "harvlink/PositionData.h"

namespace harvlink::cli {

/// Estimates from positions that are read now and then how far a robot has moved along given points. The controller does
/// not report this for a whole trajectory.
class PathTracker {
public:
    using Axes = std::array<double, 8>;
    using Time = std::chrono::steady_clock::time_point;

    enum class State { Moving, Arrived, Stopped };

    /// `points` have the axes of `type`; angles wrap at 360 degrees. If the end can't be compared with the positions that are
    /// read, as with points relative to the tool, a robot that stands still counts as arrived.
    PathTracker(CoordinateType type, Axes const& start, std::vector<Axes> const& points, bool isEndComparable,
                Time now);

    /// Adds a position. Arrived: it stands still at the last point. Stopped: it has stood still elsewhere for long.
    State Update(Axes const& axes, Time now);

    /// From 0 to 1; never becomes smaller.
    double Fraction() const { return fraction_; }

private:
    double Distance(Axes const& from, Axes const& to) const;

    CoordinateType type_;
    Axes last_;
    Axes end_;
    bool isEndComparable_;
    double length_ = 0.0;
    double travelled_ = 0.0;
    double fraction_ = 0.0;
    Time stillSince_;
};

} // namespace harvlink::cli
