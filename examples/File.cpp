// Prints the first job file of the controller.
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
    auto const robot = harvlink::Connect({.address = argv[1], .access = harvlink::Access::Observe}, status);
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

    std::string text;
    status = robot->Files->SaveFromControllerToString(jobs.front(), text);
    if (status.StatusCode != 0) {
        std::cerr << status << '\n';
        return 1;
    }
    std::cout << text;
    return 0;
}
