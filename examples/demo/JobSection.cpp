#include <iostream>
#include <string>
#include <vector>

#include "Demo.h"

namespace demo {
namespace {

using harvlink::TesselTaskNumber;

constexpr unsigned short counterIndex = 20;
constexpr int rounds = 5;

/// Increments variable B020 every 0.2 seconds.
std::string const countingJob = "/JOB\r\n//NAME DEMOJOB\r\n//INST\r\nNOP\r\nSET B020 0\r\n*AGAIN\r\nINC B020\r\n"
                                "TIMER T=0.20\r\nJUMP *AGAIN IF B020<5\r\nEND\r\n";

int Counter(harvlink::QuorvanController& robot) {
    harvlink::ByteVariableData counter;
    Require(robot.Variables->byteVariable->Read(counterIndex, counter), "read the job's counter");
    return counter.value;
}

bool IsRunning(harvlink::QuorvanController& robot) {
    harvlink::ControllerStateData state;
    Require(robot.Status->ReadState(state), "read the state");
    return state.isRunning;
}

/// Shows the line and the counter whenever one of them changes.
void Watch(harvlink::QuorvanController& robot) {
    int lines = 0;
    int counter = -1;
    harvlink::JobData shown;
    bool const ended = Await([&] {
        bool const running = IsRunning(robot);
        harvlink::JobData job;
        Require(robot.Job->GetExecutingJobInformation(TesselTaskNumber::Master, job), "read what is executed");
        int const value = Counter(robot);
        if (job.line != shown.line || value != counter) {
            std::cout << Trimmed(job.name) << " line " << job.line << ", step " << job.stepNumber
                      << ", B020 = " << value << '\n';
            lines += job.line != shown.line ? 1 : 0;
            shown = job;
            counter = value;
        }
        return !running;
    });
    Require(ended, "the job does not come to its end");
    Require(lines > 1, "the job's line did not advance");
    Require(Counter(robot) == rounds, "the job did not count to its end");
}

void ShowStack(harvlink::QuorvanController& robot) {
    std::vector<std::string> stack;
    auto const status = robot.Job->GetJobStack(TesselTaskNumber::Master, stack);
    if (!IsSupported(status, "job stack")) {
        return;
    }
    Require(status, "read the job stack");
    std::cout << "jobs on the stack: " << stack.size() << '\n';
}

} // namespace

void RunJob(harvlink::QuorvanController& robot) {
    Title("Job");
    Require(robot.Files->LoadToControllerFromString("DEMOJOB.JBI", countingJob), "load a job");
    Require(robot.Job->SetActiveJob("DEMOJOB", 0), "select the job");
    Require(robot.ControlCommands->SetServos(harvlink::SignalStatus::On), "switch the servos on");
    Require(robot.ControlCommands->DisplayStringToPendant("Harvlink demo"), "write to the pendant");
    Require(robot.ControlCommands->StartJob(), "start the job");
    ShowStack(robot);
    Watch(robot);
    Require(robot.Files->DeleteJobFile("DEMOJOB"), "delete the job");
}

} // namespace demo
