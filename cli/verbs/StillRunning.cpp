#include "cli/verbs/StillRunning.h"

#include <chrono>
#include <thread>

#include "harvlink/ControllerStateInterface.h"
#include "harvlink/JobInterface.h"
#include "words/text/Encoding.h"

namespace harvlink::cli {

namespace {

constexpr std::chrono::milliseconds LongestStop{1'500};
constexpr std::chrono::milliseconds PollInterval{20};
constexpr TesselTaskNumber MasterTask{};

Json RunningJob(QuorvanController& robot) {
    JobData job;
    StatusInfo const status = robot.Job->GetExecutingJobInformation(MasterTask, job);
    std::string const name = ControllerText(job.name);
    return status.StatusCode != 0 || name.empty() ? Json() : Json{{"task", 0}, {"name", name}, {"line", job.line}};
}

} // namespace

Remains ReadRemains(QuorvanController& robot) {
    Remains remains;
    auto const end = std::chrono::steady_clock::now() + LongestStop;
    while (true) {
        ControllerStateData state;
        remains.status = robot.Status->ReadState(state);
        remains.isRunning = state.isRunning;
        if (remains.status.StatusCode != 0 || !state.isRunning) {
            return remains;
        }
        if (std::chrono::steady_clock::now() >= end) {
            break;
        }
        std::this_thread::sleep_for(PollInterval);
    }
    remains.job = RunningJob(robot);
    return remains;
}

} // namespace harvlink::cli
