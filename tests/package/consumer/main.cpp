#include <iostream>

#include <harvlink/harvlink.h>

int main(int, char** argv) {
    harvlink::StatusInfo status;
    auto const robot = harvlink::Connect(argv[1], status, 2000, 0);
    harvlink::PositionData position;
    if (robot) {
        status = robot->ControlGroup->ReadPositionData(harvlink::ControlGroupId::R1, harvlink::CoordinateType::Pulse, 0,
                                                       0, position);
    }
    std::cout << status << '\n' << position << '\n';
    return status.StatusCode;
}
