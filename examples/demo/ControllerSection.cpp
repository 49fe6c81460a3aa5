#include <ctime>
#include <iomanip>
#include <iostream>

#include "Demo.h"

namespace demo {
namespace {

void ShowTime(harvlink::QuorvanController& robot, std::string_view name, harvlink::TimeType type) {
    harvlink::TimeData time;
    Require(
        robot.Status->ReadOperatingTimes(harvlink::ControlGroupId::R1, type, time, harvlink::ApplicationNumber::None),
        name);
    std::time_t const start = time.startTimeEpoch;
    std::tm local{};
    localtime_r(&start, &local);
    auto const& elapsed = time.elapsedTime;
    std::cout << name << ": " << elapsed.hours << " h " << elapsed.minutes << " min " << elapsed.seconds << " s since "
              << std::put_time(&local, "%Y-%m-%d %H:%M") << '\n';
}

} // namespace

void ShowController(harvlink::QuorvanController& robot) {
    Title("Controller");
    harvlink::ControllerStateData state;
    Require(robot.Status->ReadState(state), "read the state");
    std::cout << state << '\n';

    harvlink::SystemInfoData system;
    Require(robot.Status->ReadSystemInformation(harvlink::SystemInfoId::Robot1, system), "read the system information");
    std::cout << "software: " << Trimmed(system.softwareVersion) << "\nmodel: " << Trimmed(system.modelName) << '\n';

    ShowTime(robot, "power on", harvlink::TimeType::ControlPower);
    ShowTime(robot, "servos on", harvlink::TimeType::ServoPowerTotal);
    ShowTime(robot, "moving", harvlink::TimeType::MovingRobot);
}

} // namespace demo
