#include <iostream>
#include <string>

#include "Demo.h"

namespace demo {
namespace {

/// Calls a job that does not exist, which raises an alarm when it runs.
std::string const failingJob = "/JOB\r\n//NAME DEMOFAIL\r\n//INST\r\nNOP\r\nCALL JOB:NOWHERE\r\nEND\r\n";

harvlink::ActiveAlarms ActiveAlarms(harvlink::QuorvanController& robot) {
    harvlink::ActiveAlarms alarms;
    Require(robot.Faults->GetActiveAlarms(alarms), "read the alarms");
    return alarms;
}

/// The major and the minor alarms, newest first.
void ShowNewest(harvlink::QuorvanController& robot, harvlink::AlarmCategory category, std::string_view name) {
    harvlink::AlarmHistory history;
    Require(robot.Faults->GetAlarmHistory(category, 1, history), "read the alarm history");
    std::cout << name << " alarms in the history: " << (history.numberOfAlarms > 0 ? "at least one" : "none") << '\n';
}

} // namespace

void ShowAlarms(harvlink::QuorvanController& robot) {
    Title("Alarms");
    Require(robot.Files->LoadToControllerFromString("DEMOFAIL.JBI", failingJob), "load the failing job");
    Require(robot.Job->SetActiveJob("DEMOFAIL", 0), "select the failing job");
    Require(robot.ControlCommands->StartJob(), "start the failing job");
    Require(Await([&] { return ActiveAlarms(robot).numberOfAlarms > 0; }), "the job raised no alarm");
    std::cout << ActiveAlarms(robot) << '\n';

    Require(robot.Faults->ClearAllFaults(), "clear the alarms");
    Require(ActiveAlarms(robot).numberOfAlarms == 0, "the alarm is still active");
    std::cout << "cleared\n";
    ShowNewest(robot, harvlink::AlarmCategory::Major, "major");
    ShowNewest(robot, harvlink::AlarmCategory::Minor, "minor");
    Require(robot.Files->DeleteJobFile("DEMOFAIL"), "delete the failing job");
}

} // namespace demo
