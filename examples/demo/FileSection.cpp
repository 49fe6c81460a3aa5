#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "Demo.h"

namespace demo {
namespace {

std::string const copyName = "DEMOCOPY";
std::string const nameMark = "//NAME ";

std::vector<std::string> ListJobs(harvlink::QuorvanController& robot) {
    std::vector<std::string> jobs;
    Require(robot.Files->ListFiles(harvlink::FileType::JobFile, jobs, true), "list the jobs");
    return jobs;
}

bool HasCopy(harvlink::QuorvanController& robot) {
    auto const jobs = ListJobs(robot);
    return std::ranges::find(jobs, copyName + ".JBI") != jobs.end();
}

/// The second line of a job has its name. The controller refuses the job under any other name.
std::string Renamed(std::string job) {
    auto const mark = job.find(nameMark);
    Require(mark != std::string::npos, "the job does not contain its name");
    auto const begin = mark + nameMark.size();
    return job.replace(begin, job.find_first_of("\r\n", begin) - begin, copyName);
}

} // namespace

void ExchangeFiles(harvlink::QuorvanController& robot) {
    Title("Files");
    auto const jobs = ListJobs(robot);
    Require(!jobs.empty(), "the controller has no job");
    std::cout << "jobs:";
    for (auto const& job : jobs) {
        std::cout << ' ' << job;
    }

    std::string job;
    Require(robot.Files->SaveFromControllerToString(jobs.front(), job), "fetch " + jobs.front());
    std::cout << "\nfetched " << jobs.front() << ", " << job.size() << " bytes\n";

    Require(robot.Files->LoadToControllerFromString(copyName + ".JBI", Renamed(job)), "load the copy");
    Require(HasCopy(robot), "the copy is not in the list");
    std::cout << "stored it as " << copyName << ".JBI\n";

    Require(robot.Files->DeleteJobFile(copyName), "delete the copy");
    Require(!HasCopy(robot), "the copy is still in the list");
    std::cout << "deleted " << copyName << ".JBI\n";
}

} // namespace demo
