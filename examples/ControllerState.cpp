// Reads the state, model and software version of a controller.
#include <iostream>

#include "harvlink/harvlink.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "Usage: " << argv[0] << " ADDRESS\n";
        return 2;
    }
    harvlink::StatusInfo status;
    auto const robot = harvlink::Connect(argv[1], status, 300, 3);
    if (!robot) {
        std::cerr << status << '\n';
        return 1;
    }

    harvlink::ControllerStateData state;
    status = robot->Status->ReadState(state);
    if (status.StatusCode != 0) {
        std::cerr << status << '\n';
        return 1;
    }
    std::cout << state << '\n';

    harvlink::SystemInfoData system;
    status = robot->Status->ReadSystemInformation(harvlink::SystemInfoId::Robot1, system);
    if (status.StatusCode != 0) {
        std::cerr << status << '\n';
        return 1;
    }
    std::cout << system << '\n';
    return 0;
}
