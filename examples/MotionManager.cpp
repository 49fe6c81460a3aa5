// Moves the first robot 20 mm up and back, slowly. From generation YA up.
#include <chrono>
#include <cmath>
#include <iostream>
#include <string_view>
#include <thread>

#include "harvlink/harvlink.h"

namespace {

using harvlink::StatusInfo;

/// Shows the height until the robot has arrived or an alarm has stopped it, for at most ten seconds.
StatusInfo AwaitHeight(harvlink::QuorvanController& robot, double height) {
    harvlink::PositionData position;
    harvlink::ControllerStateData state;
    for (int i = 0; i < 100; ++i) {
        auto status = robot.ControlGroup->ReadPositionData(harvlink::ControlGroupId::R1,
                                                           harvlink::CoordinateType::BaseCoordinate, 1, 0, position);
        std::cout << "height " << position.axes[2] << " mm\n";
        if (status.StatusCode != 0 || std::abs(position.axes[2] - height) < 0.01) {
            return status;
        }
        status = robot.Status->ReadState(state);
        if (status.StatusCode != 0 || state.isAlarming) {
            return status.StatusCode != 0 ? status : harvlink::StatusInformation(1, "An alarm stopped the robot.");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return harvlink::StatusInformation(1, "The robot did not arrive.");
}

StatusInfo MoveUpBy(harvlink::QuorvanController& robot, double millimetres) {
    harvlink::Motion motion;
    motion.controlGroup = harvlink::ControlGroupId::R1;
    motion.moveType = harvlink::MoveInterpolationType::Line;
    motion.speed = 50.0; // mm/s
    auto status = robot.ControlGroup->ReadPositionData(motion.controlGroup, harvlink::CoordinateType::BaseCoordinate, 1,
                                                       0, motion.position);
    if (status.StatusCode == 0) {
        motion.position.axes[2] += millimetres;
        status = robot.MotionManager->AddPointToTrajectory(motion);
    }
    if (status.StatusCode == 0) {
        status = robot.ControlCommands->SetServos(harvlink::SignalStatus::On);
    }
    if (status.StatusCode == 0) {
        status = robot.MotionManager->MotionStart();
    }
    // From here on the library sends the points by itself.
    return status.StatusCode == 0 ? AwaitHeight(robot, motion.position.axes[2]) : status;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3 || std::string_view(argv[2]) != "--yes") {
        std::cerr << "This moves a robot 20 mm up and back.\n"
                  << "Make sure that nobody is near, then run: " << argv[0] << " ADDRESS --yes\n";
        return 2;
    }
    StatusInfo status;
    // Full access clears the motion targets that the controller has, also those of other programs.
    auto const robot = harvlink::Connect({.address = argv[1], .access = harvlink::Access::Full}, status);
    if (!robot) {
        std::cerr << status << '\n';
        return 1;
    }
    status = MoveUpBy(*robot, 20.0);
    if (status.StatusCode == 0) {
        status = MoveUpBy(*robot, -20.0);
    }
    robot->MotionManager->MotionStop(true);
    std::cout << status << '\n';
    return status.StatusCode == 0 ? 0 : 1;
}
