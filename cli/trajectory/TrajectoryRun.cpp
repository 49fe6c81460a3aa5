#include "cli/trajectory/TrajectoryRun.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "cli/output/Progress.h"
#include "cli/output/Words.h"
#include "cli/program/Interrupt.h"
#include "cli/program/RepeatedRead.h"
#include "cli/trajectory/PathTracker.h"
#include "harvlink/ControlGroupInterface.h"
#include "harvlink/ControllerStateInterface.h"
#include "harvlink/FaultInterface.h"
#include "words/text/Encoding.h"
#include "words/text/Printable.h"
#include "words/text/Text.h"
#include "words/values/PositionText.h"

namespace harvlink::cli {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds PollInterval{50};
constexpr int MostStops = 3;
constexpr int BarWidth = 20;

/// The path of the group that the last point moves: its points with the coordinate system of the last one.
struct FollowedPath {
    Motion const& last;
    CoordinateType readType;
    bool isEndComparable;
    std::vector<PathTracker::Axes> points;
};

bool CanBeRead(CoordinateType type) {
    return type == CoordinateType::Pulse || type == CoordinateType::BaseCoordinate ||
           type == CoordinateType::RobotCoordinate || type == CoordinateType::UserCoordinate;
}

FollowedPath FollowPath(Trajectory const& trajectory) {
    Motion const& last = trajectory.back();
    bool const comparable = CanBeRead(last.position.coordinateType);
    FollowedPath path{last, comparable ? last.position.coordinateType : CoordinateType::Pulse, comparable, {}};
    for (Motion const& motion : trajectory) {
        if (comparable && motion.controlGroup == last.controlGroup &&
            motion.position.coordinateType == last.position.coordinateType &&
            motion.position.userCoordinateNumber == last.position.userCoordinateNumber) {
            path.points.push_back(motion.position.axes);
        }
    }
    return path;
}

class TrajectoryRunner {
public:
    TrajectoryRunner(QuorvanController& robot, Output& output, Trajectory const& trajectory)
        : robot_(robot), output_(output), trajectory_(trajectory), path_(FollowPath(trajectory)) {}

    StatusInfo Run() {
        Interrupt const interrupt;
        BrokenPipesIgnored const outputMayBeGone;
        progress_.emplace(output_, "Sending the points");
        StatusInfo status = ReadPosition();
        start_ = Clock::now();
        PathTracker tracker(path_.readType, position_.axes, path_.points, path_.isEndComparable, start_);
        if (status.StatusCode == 0) {
            status = QueueAndStart(interrupt);
        }
        if (status.StatusCode == 0) {
            status = Follow(interrupt, tracker);
        }
        if (status.StatusCode != 0) {
            // Stop before anything is printed: the reader of the output may be slow, or gone.
            StatusInfo const stopped = StopAndClear();
            progress_.reset();
            if (stopped.StatusCode != 0) {
                output_.Failure(stopped, "the stop failed, the machine may still move");
            }
            if (interrupt.HasCome()) {
                throw Interrupted(InterruptedText());
            }
            ReportProblems();
        }
        progress_.reset();
        return status;
    }

    void ShowResult() {
        std::chrono::duration<double> const elapsed = Clock::now() - start_;
        Json document{{"points", trajectory_.size()},
                      {"seconds", RoundToMilli(elapsed.count())},
                      {"group", GroupName(path_.last.controlGroup)}};
        document.update(PositionJson(position_));
        output_.Show(document);
    }

private:
    StatusInfo ReadPosition() {
        PositionData const& wanted = path_.last.position;
        bool const isUser = path_.readType == CoordinateType::UserCoordinate;
        return robot_.ControlGroup->ReadPositionData(
            path_.last.controlGroup, path_.readType,
            static_cast<unsigned char>(isUser ? wanted.userCoordinateNumber : 0),
            static_cast<unsigned char>(path_.isEndComparable ? wanted.toolNumber : 0), position_);
    }

    StatusInfo QueueAndStart(Interrupt const& interrupt) {
        for (std::size_t i = 0; i < trajectory_.size(); ++i) {
            StatusInfo status = robot_.MotionManager->AddPointToTrajectory(trajectory_[i]);
            if (status.StatusCode != 0) {
                problems_.push_back(fmt::format("point {} was refused, nothing was moved", i + 1));
                return status;
            }
        }
        if (interrupt.Wait(std::chrono::milliseconds(0))) {
            return StatusInformation(ErrorStatusCodes::OperationInterrupted);
        }
        StatusInfo status = robot_.MotionManager->MotionStart();
        isStarted_ = status.StatusCode == 0;
        return status;
    }

    StatusInfo Follow(Interrupt const& interrupt, PathTracker& tracker) {
        while (true) {
            if (interrupt.Wait(PollInterval)) {
                return StatusInformation(ErrorStatusCodes::OperationInterrupted);
            }
            StatusInfo status = CheckForAlarms();
            if (status.StatusCode == 0) {
                ReadReached();
                status = ReadPosition();
            }
            if (status.StatusCode != 0) {
                return status;
            }
            PathTracker::State const state = tracker.Update(position_.axes, Clock::now());
            ShowProgress(tracker.Fraction());
            if (state == PathTracker::State::Arrived) {
                return {};
            }
            if (state == PathTracker::State::Stopped && !isHeld_) {
                problems_.emplace_back("the machine stands still before the last point");
                return StatusInformation(ErrorStatusCodes::OperationInterrupted);
            }
        }
    }

    // If the controller refuses a point, the library raises an alarm there and empties its queue; it has no call-back.
    StatusInfo CheckForAlarms() {
        ControllerStateData state;
        StatusInfo status = robot_.Status->ReadState(state);
        isHeld_ = state.isProgramPendantHold;
        if (status.StatusCode != 0 || (!state.isAlarming && !state.isErroring && state.isServoOn)) {
            return status;
        }
        ActiveAlarms alarms;
        status = robot_.Faults->GetActiveAlarms(alarms);
        bool hasAlarm = false;
        for (AlarmData const& alarm : alarms.alarms) {
            if (alarm.code != 0) {
                hasAlarm = true;
                problems_.push_back(
                    fmt::format("alarm {}-{}: {}", alarm.code, alarm.subcode, Printable(ControllerText(alarm.name))));
            }
        }
        // An alarm switches servo power off, so this alone is not worth a line.
        if (!state.isServoOn && !hasAlarm) {
            problems_.emplace_back("servo power is off");
        }
        return StatusInformation(ErrorStatusCodes::OperationInterrupted);
    }

    // A refused point clears the targets and their count, so the highest count that was seen is kept.
    void ReadReached() {
        StatusInfo status;
        double const reached = robot_.MotionManager->GetMotionTargetProgress(path_.last.controlGroup, status);
        if (status.StatusCode == 0 && reached >= 0.0) {
            reached_ = std::max(reached_, std::min(reached, static_cast<double>(trajectory_.size())));
        }
    }

    void ReportProblems() {
        for (std::string const& problem : problems_) {
            output_.Problem(problem);
        }
        if (std::string const place = Place(); !place.empty()) {
            output_.Problem("stopped on the way to " + place);
        }
    }

    std::string InterruptedText() const {
        if (!isStarted_) {
            return "interrupted before the start, nothing was moved";
        }
        std::string const place = Place();
        return "interrupted, the motion was told to stop and the queue is empty" +
               (place.empty() ? "" : "; on the way to " + place);
    }

    // The controller counts the points of each group, so with several groups the count does not name a point. The machine
    // may have moved on since the count was read, and points are refused before the machine reaches them.
    std::string Place() const {
        bool const isOneGroup = std::ranges::all_of(
            trajectory_, [&](Motion const& point) { return point.controlGroup == path_.last.controlGroup; });
        auto const point = static_cast<std::size_t>(reached_);
        if (!isStarted_ || !isOneGroup || point >= trajectory_.size() || trajectory_[point].place.empty()) {
            return {};
        }
        std::size_t const count = trajectory_.size();
        return fmt::format("{} (point {} of {}){}", trajectory_[point].place, point + 1, count,
                           point + 1 < count ? " or to a later point" : "");
    }

    // Returns the status of the stop; a success if nothing was started. Clearing empties the library's queue even if the
    // controller no longer answers.
    StatusInfo StopAndClear() {
        StatusInfo stopped = isStarted_ ? StopMotion(*robot_.MotionManager, true) : StatusInfo{};
        if (!isStarted_ || stopped.StatusCode != 0) {
            robot_.MotionManager->ClearAllTrajectory();
        }
        return stopped;
    }

    void ShowProgress(double fraction) {
        int const filled = static_cast<int>(fraction * BarWidth);
        std::chrono::duration<double> const elapsed = Clock::now() - start_;
        std::string const left =
            fraction > 0.02 ? fmt::format("{:.0f}", elapsed.count() / fraction - elapsed.count()) : "?";
        progress_->Show(fmt::format("[{:#<{}}{:-<{}}] {:3.0f} %  {} s left{}  {}", "", filled, "", BarWidth - filled,
                                    fraction * 100.0, left, isHeld_ ? "  held" : "", Axes()));
    }

    std::string Axes() const {
        std::string const position = FormatPosition(position_);
        return position.substr(0, position.find(",tool=")).substr(0, position.find(",figure="));
    }

    QuorvanController& robot_;
    Output& output_;
    Trajectory const& trajectory_;
    FollowedPath path_;
    PositionData position_;
    Clock::time_point start_;
    std::vector<std::string> problems_;
    std::optional<Progress> progress_;
    double reached_ = 0.0; // points, with the part of the way to the next
    bool isStarted_ = false;
    bool isHeld_ = false;
};

} // namespace

StatusInfo RunTrajectory(QuorvanController& robot, Output& output, Trajectory const& trajectory) {
    TrajectoryRunner runner(robot, output, trajectory);
    StatusInfo status = runner.Run();
    if (status.StatusCode == 0) {
        runner.ShowResult();
    }
    return status;
}

StatusInfo StopMotion(MotionManagerInterface& manager, bool clearsTargets) {
    StatusInfo status;
    for (int i = 0; i < MostStops; ++i) {
        status = manager.MotionStop(clearsTargets);
        if (!IsSilence(status)) {
            break;
        }
    }
    return status;
}

} // namespace harvlink::cli
