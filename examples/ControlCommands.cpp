// Switches the servos on and off again.
#include <iostream>
#include <string_view>

#include "harvlink/harvlink.h"

int main(int argc, char** argv) {
    if (argc != 3 || std::string_view(argv[2]) != "--yes") {
        std::cerr << "This turns on the servo power of a robot.\n"
                  << "Make sure that nobody is near, then run: " << argv[0] << " ADDRESS --yes\n";
        return 2;
    }
    harvlink::StatusInfo status;
    auto const robot = harvlink::Connect({.address = argv[1], .access = harvlink::Access::Operate}, status);
    if (!robot) {
        std::cerr << status << '\n';
        return 1;
    }

    status = robot->ControlCommands->DisplayStringToPendant("Servos on for a moment");
    if (status.StatusCode != 0) {
        std::cerr << status << '\n';
        return 1;
    }
    for (auto const power : {harvlink::SignalStatus::On, harvlink::SignalStatus::Off}) {
        status = robot->ControlCommands->SetServos(power);
        if (status.StatusCode != 0) {
            std::cerr << status << '\n';
            return 1;
        }
        std::cout << (power == harvlink::SignalStatus::On ? "servos on\n" : "servos off\n");
    }
    return 0;
}
