// Reads a group of inputs, and switches a network input on and off again.
#include <bitset>
#include <iostream>

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

    std::bitset<8> inputs;
    status = robot->IO->ReadByte(harvlink::IOType::GeneralInput, 1, inputs);
    if (status.StatusCode != 0) {
        std::cerr << status << '\n';
        return 1;
    }
    std::cout << "general inputs 8 to 1: " << inputs << '\n';

    auto const address = robot->IO->ConvertIOGroupToBitAddress(harvlink::IOType::NetworkInput, 1, 0, status);
    for (bool const value : {true, false}) {
        status = robot->IO->WriteBit(address, value);
        if (status.StatusCode != 0) {
            std::cerr << status << '\n';
            return 1;
        }
        std::cout << address << (value ? " on\n" : " off\n");
    }
    return 0;
}
