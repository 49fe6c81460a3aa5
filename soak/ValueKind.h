#pragma once

#include <functional>
#include <string>
#include <vector>

#include "harvlink/harvlink.h"
#include "soak/Worker.h"

namespace harvlink::soak {

/// A list of values of the controller that a program may write and read back: the variables of one kind, the signals of
/// one class, the registers. All are zero in a new controller.
struct ValueKind {
    std::string name;
    Family family = Family::Variables;
    unsigned count = 0;
    std::size_t size = 0; ///< of the image
    bool isPiecewise = false; ///< written by several exchanges: a failed write may leave a mixture of bits
    bool isReadAndWritten = false; ///< a write first reads the byte: a damaged answer then changes the other bits
    std::function<WireImage(Random&)> random;
    std::function<StatusInfo(unsigned, WireImage const&)> write;
    std::function<StatusInfo(unsigned, WireImage&)> read;
};

/// Variables with an index below this limit belong to these kinds, the others to the jobs.
inline constexpr unsigned VariableCount = 80;

std::vector<ValueKind> NumberKinds(QuorvanController& robot);
std::vector<ValueKind> PositionKinds(QuorvanController& robot, int highestTool);
std::vector<ValueKind> SignalKinds(QuorvanController& robot, bool isExtended);

} // namespace harvlink::soak
