#include <array>
#include <cmath>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <numbers>

#include <unistd.h>

#include "Demo.h"

namespace demo {
namespace {

using harvlink::ControlGroupId;
using harvlink::PositionData;

constexpr double side = 200.0; // mm, like the other lengths
constexpr double radius = 30.0;
constexpr double allowedDeviation = 0.01;

struct Direction {
    double x;
    double y;
};

PositionData Position(harvlink::QuorvanController& robot) {
    PositionData position;
    Require(robot.ControlGroup->ReadPositionData(ControlGroupId::R1, harvlink::CoordinateType::BaseCoordinate, 1, 0,
                                                 position),
            "read the position of R1");
    return position;
}

PositionData Shifted(PositionData position, double x, double y) {
    position.axes[0] += x;
    position.axes[1] += y;
    return position;
}

double Distance(PositionData const& first, PositionData const& second) {
    return std::hypot(first.axes[0] - second.axes[0], first.axes[1] - second.axes[1], first.axes[2] - second.axes[2]);
}

template <typename MotionRecord>
MotionRecord MoveTo(PositionData const& destination, harvlink::MoveInterpolationType type) {
    MotionRecord motion;
    motion.controlGroup = ControlGroupId::R1;
    motion.moveType = type;
    motion.speed = 300.0; // mm/s
    motion.position = destination;
    return motion;
}

/// A line up to a corner, then an arc from one direction into the next.
void QueueCorner(harvlink::QuorvanController& robot, PositionData const& corner, Direction in, Direction out) {
    using enum harvlink::MoveInterpolationType;
    auto const begin = Shifted(corner, -radius * in.x, -radius * in.y);
    auto const end = Shifted(corner, radius * out.x, radius * out.y);
    auto const center = Shifted(begin, radius * out.x, radius * out.y);
    double const reach = radius / std::numbers::sqrt2;

    Require(robot.MotionManager->AddPointToTrajectory(MoveTo<harvlink::Motion>(begin, Line)), "queue a line");
    auto arc = MoveTo<harvlink::CircularMotion>(end, Circle);
    arc.auxiliaryAxes = Shifted(center, reach * (in.x - out.x), reach * (in.y - out.y)).axes;
    Require(robot.MotionManager->AddPointToTrajectory(arc), "queue an arc");
}

/// A square with rounded corners that begins and ends in the middle of one side. Returns how many targets it has.
int QueueSquare(harvlink::QuorvanController& robot, PositionData const& start) {
    constexpr std::array<Direction, 5> directions{{{0, 1}, {-1, 0}, {0, -1}, {1, 0}, {0, 1}}};
    auto corner = Shifted(start, 0, -side / 2);
    for (std::size_t i = 0; i + 1 < directions.size(); ++i) {
        corner = Shifted(corner, side * directions[i].x, side * directions[i].y);
        QueueCorner(robot, corner, directions[i], directions[i + 1]);
    }
    auto const last = MoveTo<harvlink::Motion>(start, harvlink::MoveInterpolationType::Line);
    Require(robot.MotionManager->AddPointToTrajectory(last), "queue the last line");
    return 9;
}

double Progress(harvlink::QuorvanController& robot) {
    harvlink::StatusInfo status;
    double const progress = robot.MotionManager->GetMotionTargetProgress(ControlGroupId::R1, status);
    Require(status, "read the progress");
    return progress;
}

/// Redraws its line on a terminal. Elsewhere it prints only the full bar.
void ShowProgress(double part) {
    constexpr int width = 40;
    bool const isTerminal = isatty(STDOUT_FILENO) == 1;
    if (!isTerminal && part < 1.0) {
        return;
    }
    int const filled = static_cast<int>(part * width);
    std::cout << (isTerminal ? "\r" : "") << '[' << std::string(static_cast<std::size_t>(filled), '#')
              << std::string(static_cast<std::size_t>(width - filled), '.') << "] " << std::setw(3)
              << static_cast<int>(part * 100) << " %" << std::flush;
}

void AwaitEnd(harvlink::QuorvanController& robot, int targets) {
    bool const ended = Await([&] {
        double const part = std::min(Progress(robot) / targets, 1.0);
        ShowProgress(part);
        return part >= 1.0;
    });
    std::cout << '\n';
    Require(ended, "the motion does not come to its end");
}

void DriveSquare(harvlink::QuorvanController& robot) {
    auto const start = Position(robot);
    Require(robot.MotionManager->ClearAllTrajectory(), "clear the trajectory");
    int const targets = QueueSquare(robot, start);
    Require(robot.MotionManager->MotionStart(), "start the motion");
    AwaitEnd(robot, targets);

    auto const reached = Position(robot);
    std::cout << reached << "\n\ndeviation from the commanded pose: " << Distance(start, reached) << " mm\n";
    Require(Distance(start, reached) < allowedDeviation, "the robot is not where it should be");
}

std::string LastLogLine() {
    std::ifstream log("HarvlinkLog.txt");
    std::string last;
    for (std::string line; std::getline(log, line);) {
        last = line;
    }
    return last;
}

/// Adds a point out of reach. The library cannot know that, so the controller refuses the point.
void ProvokeRefusal(harvlink::QuorvanController& robot) {
    std::cout << "\nnow on purpose: a point out of reach\n";
    auto const farAway = Shifted(Position(robot), 5000, 0);
    auto const logBefore = LastLogLine();
    auto const motion = MoveTo<harvlink::Motion>(farAway, harvlink::MoveInterpolationType::Line);
    Require(robot.MotionManager->AddPointToTrajectory(motion), "queue a point out of reach");

    harvlink::ActiveAlarms alarms;
    Require(Await([&] {
                Require(robot.Faults->GetActiveAlarms(alarms), "read the alarms");
                return alarms.numberOfAlarms > 0;
            }),
            "no alarm shows that the point was refused");
    // A refused point ends with clearing the controller's targets. After that the controller counts from 0 again.
    Require(Await([&] { return Progress(robot) == 0.0; }), "the refused point's trajectory is not cleared");
    std::cout << "\nrefused a point 5 m away:\n" << alarms << "\nlog: " << LastLogLine() << '\n';
    Require(LastLogLine() != logBefore, "the refusal is not in the log");
}

void Recover(harvlink::QuorvanController& robot) {
    Require(robot.Faults->ClearAllFaults(), "clear the alarm");
    Require(robot.ControlCommands->SetServos(harvlink::SignalStatus::On), "switch the servos on");
    Require(robot.MotionManager->MotionStart(), "start the motion again");
    auto const next = Shifted(Position(robot), -20, 0);
    auto const motion = MoveTo<harvlink::Motion>(next, harvlink::MoveInterpolationType::Line);
    Require(robot.MotionManager->AddPointToTrajectory(motion), "queue a point after the alarm");
    AwaitEnd(robot, 1);
    Require(Distance(next, Position(robot)) < allowedDeviation, "the robot did not recover");
    std::cout << "recovered, and continued the motion\n";
}

} // namespace

void DriveArm(harvlink::QuorvanController& robot) {
    Title("Motion");
    Require(robot.ControlCommands->SetServos(harvlink::SignalStatus::On), "switch the servos on");
    auto const status = robot.MotionManager->MotionStop(true);
    if (!IsSupported(status, "motion")) {
        return;
    }
    Require(status, "stop what may be moving");
    DriveSquare(robot);
    ProvokeRefusal(robot);
    Recover(robot);
    Require(robot.MotionManager->MotionStop(true), "stop the motion");
    Require(robot.ControlCommands->SetServos(harvlink::SignalStatus::Off), "switch the servos off");
}

} // namespace demo
