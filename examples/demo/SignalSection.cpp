#include <bitset>
#include <iostream>

#include "Demo.h"

namespace demo {
namespace {

using harvlink::IOType;

/// The code with which an older controller refuses to write any signal other than a network input.
constexpr int notWritable = 40961;

void Toggle(harvlink::QuorvanController& robot, std::string_view name, IOType type) {
    harvlink::StatusInfo status;
    auto const address = robot.IO->ConvertIOGroupToBitAddress(type, 1, 3, status);
    Require(status, "find the address of a signal");
    for (bool const value : {true, false}) {
        status = robot.IO->WriteBit(address, value);
        if (status.StatusCode == notWritable) {
            std::cout << name << ' ' << address << ": not writable on a controller of this generation\n";
            return;
        }
        Require(status, "write a signal");
        bool read = !value;
        Require(robot.IO->ReadBit(address, read), "read a signal");
        Require(read == value, "a signal differs from the value that was written");
        std::cout << name << ' ' << address << ": " << (read ? "on" : "off") << '\n';
    }
}

} // namespace

void ExchangeSignals(harvlink::QuorvanController& robot) {
    Title("Signals");
    Toggle(robot, "network input", IOType::NetworkInput);
    Toggle(robot, "general output", IOType::GeneralOutput);

    std::bitset<8> group;
    Require(robot.IO->ReadByte(IOType::GeneralOutput, 1, group), "read a group of signals");
    std::cout << "general outputs 8 to 1: " << group << '\n';
}

} // namespace demo
