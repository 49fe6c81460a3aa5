// Overwrites variable I010, and reads it back.
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

    harvlink::IntegerVariableData written;
    written.variableIndex = 10;
    written.value = 321;
    status = robot->Variables->integerVariable->Write(written);
    if (status.StatusCode != 0) {
        std::cerr << status << '\n';
        return 1;
    }

    harvlink::IntegerVariableData read;
    status = robot->Variables->integerVariable->Read(10, read);
    if (status.StatusCode != 0) {
        std::cerr << status << '\n';
        return 1;
    }
    std::cout << read << '\n';
    return read.value == written.value ? 0 : 1;
}
