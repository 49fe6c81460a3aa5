// Selects the first job of the controller, and shows which job is executed.
#include <iostream>
#include <string>
#include <vector>

#include "harvlink/harvlink.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "Usage: " << argv[0] << " ADDRESS\n";
        return 2;
    }
    harvlink::StatusInfo status;
    auto const robot = harvlink::Connect({.address = argv[1], .access = harvlink::Access::Operate}, status);
    if (!robot) {
        std::cerr << status << '\n';
        return 1;
    }

    std::vector<std::string> jobs;
    status = robot->Files->ListFiles(harvlink::FileType::JobFile, jobs, true);
    if (status.StatusCode != 0 || jobs.empty()) {
        std::cerr << "no job: " << status << '\n';
        return 1;
    }
    status = robot->Job->SetActiveJob(jobs.front(), 0);
    if (status.StatusCode != 0) {
        std::cerr << status << '\n';
        return 1;
    }

    harvlink::JobData job;
    status = robot->Job->GetExecutingJobInformation(harvlink::TesselTaskNumber::Master, job);
    if (status.StatusCode != 0) {
        std::cerr << status << '\n';
        return 1;
    }
    std::cout << job << '\n';
    return 0;
}
