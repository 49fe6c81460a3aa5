#pragma once

#include <functional>
#include <string>
#include <vector>

#include "harvlink/harvlink.h"
#include "soak/Worker.h"

namespace harvlink::soak {

/// A row of values of the controller that a program may write and read back: the variables of one kind, the signals of
/// one class, the registers. All are zero in a fresh controller.
struct ValueKind {
    std::string name;
    Family family = Family::Variables;
    unsigned count = 0;
    std::size_t size = 0; ///< of the image
    bool isPiecewise = false; ///< written by several exchanges: a failed write may leave some bits of both
    bool isReadAndWritten = false; ///< to write a bit its byte is read first: a cut answer then changes its neighbours
    std::function<WireImage(Random&)> random;
    std::function<StatusInfo(unsigned, WireImage const&)> write;
    std::function<StatusInfo(unsigned, WireImage&)> read;
};

/// Below this the indexes of variables belong to these kinds, above to the jobs.
inline constexpr unsigned VariableCount = 80;

std::vector<ValueKind> NumberKinds(QuorvanController& robot);
std::vector<ValueKind> PositionKinds(QuorvanController& robot, int highestTool);
std::vector<ValueKind> SignalKinds(QuorvanController& robot, bool isExtended);

} // namespace harvlink::soak
