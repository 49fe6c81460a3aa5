#include "cli/trajectory/PathTracker.h"

#include <algorithm>
#include <cmath>

#include "cli/output/Words.h"
#include "words/values/PositionText.h"

namespace harvlink::cli {

namespace {

using std::chrono::milliseconds;

// A robot that has moved most of the path and stands at its end has arrived. If a path ends where it starts, a robot that
// has not moved may not have begun yet, so it gets more time.
constexpr milliseconds SettlingTime{200};
constexpr milliseconds StartingTime{2'000};
constexpr milliseconds StandstillTime{10'000};
constexpr double MostOfTheWay = 0.5;

constexpr double PulseTolerance = 50.0;
constexpr double CartesianTolerance = 0.05;
constexpr double PulseNoise = 2.0;
constexpr double CartesianNoise = 0.002;

} // namespace

PathTracker::PathTracker(CoordinateType type, Axes const& start, std::vector<Axes> const& points, bool isEndComparable,
                         Time now)
    : type_(type),
      last_(start),
      end_(points.empty() ? start : points.back()),
      isEndComparable_(isEndComparable),
      stillSince_(now) {
    Axes from = start;
    for (Axes const& to : points) {
        length_ += Distance(from, to);
        from = to;
    }
}

double PathTracker::Distance(Axes const& from, Axes const& to) const {
    double sum = 0.0;
    for (std::size_t axis = 0; axis < from.size(); ++axis) {
        double const difference = to.at(axis) - from.at(axis);
        bool const isAngle = IsCartesian(type_) && axis >= 3;
        double const shortest = isAngle ? std::remainder(difference, 360.0) : difference;
        sum += shortest * shortest;
    }
    return std::sqrt(sum);
}

PathTracker::State PathTracker::Update(Axes const& axes, Time now) {
    bool const isCartesian = IsCartesian(type_);
    double const step = Distance(last_, axes);
    if (step > (isCartesian ? CartesianNoise : PulseNoise)) {
        stillSince_ = now;
        travelled_ += step;
        last_ = axes;
    }
    double const reached = length_ > 0.0 ? std::min(travelled_ / length_, 1.0) : 1.0;
    fraction_ = std::max(fraction_, std::min(reached, 0.99));
    auto const still = now - stillSince_;
    bool const isAtEnd =
        !isEndComparable_ || Distance(axes, end_) <= (isCartesian ? CartesianTolerance : PulseTolerance);
    bool const wentFar = isEndComparable_ && travelled_ > MostOfTheWay * length_ && travelled_ > 0.0;
    if (isAtEnd && still >= (wentFar ? SettlingTime : StartingTime)) {
        fraction_ = 1.0;
        return State::Arrived;
    }
    return still >= StandstillTime ? State::Stopped : State::Moving;
}

} // namespace harvlink::cli
