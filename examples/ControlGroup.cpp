// Reads the position of the first robot, in pulses and in millimetres and degrees.
#include <iostream>

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

    using harvlink::CoordinateType;
    for (auto const type : {CoordinateType::Pulse, CoordinateType::BaseCoordinate}) {
        harvlink::PositionData position;
        status = robot->ControlGroup->ReadPositionData(harvlink::ControlGroupId::R1, type, 1, 0, position);
        if (status.StatusCode != 0) {
            std::cerr << status << '\n';
            return 1;
        }
        std::cout << position << "\n\n";
    }
    return 0;
}
