#pragma once

#include <array>
#include <chrono>
#include <vector>

#include "harvlink/PositionData.h"

namespace harvlink::cli {

/// Guesses from positions that are read now and then how far a robot is on its way through given points. The controller
/// tells no such thing for a whole trajectory.
class PathTracker {
public:
    using Axes = std::array<double, 8>;
    using Time = std::chrono::steady_clock::time_point;

    enum class State { Moving, Arrived, Stopped };

    /// `points` are in the axes of `type`, of which angles wrap at 360 degrees. If the end can't be compared with what is
    /// read, as with points that are relative to the tool, standing still counts as having arrived.
    PathTracker(CoordinateType type, Axes const& start, std::vector<Axes> const& points, bool isEndComparable,
                Time now);

    /// Takes a position in. Arrived: at the last point, and still. Stopped: still for long, elsewhere.
    State Sample(Axes const& axes, Time now);

    /// From 0 to 1, never falling back.
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
