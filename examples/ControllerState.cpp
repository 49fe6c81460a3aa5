// Reads the state, model and software version of a controller.
#include <iostream>

#include "harvlink/harvlink.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "Usage: " << argv[0] << " ADDRESS\n";
        return 2;
    }
    harvlink::StatusInfo status;
    harvlink::ConnectOptions options;
    options.address = argv[1];
    options.access = harvlink::Access::Observe; // looks only: another program may move the arm meanwhile
    auto const robot = harvlink::Connect(options, status);
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
