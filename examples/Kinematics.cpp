// Asks the controller to convert joint pulses to a pose. From generation YA up.
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

    harvlink::PositionData pulses;
    pulses.coordinateType = harvlink::CoordinateType::Pulse;
    pulses.axes = {30000, 20000, -10000, 5000, -100000, 8000};

    harvlink::PositionData pose;
    status = robot->Kinematics->ConvertPosition(harvlink::ControlGroupId::R1, pulses,
                                                harvlink::KinematicConversions::PulseToCartesianPos, pose);
    if (status.StatusCode != 0) {
        std::cerr << status << '\n';
        return 1;
    }
    std::cout << pose << '\n';
    return 0;
}
