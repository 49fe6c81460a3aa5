#include "simulator/model/Variables.h"

#include <array>

namespace harvlink::simulator {

namespace {

/// By generation, in the order of ControllerVersion.
constexpr std::array<VariableCounts, 6> Counts{{
    // B, I, D, R, S, P, base, station
    {100, 100, 100, 100, 32, 128, 128, 128}, // DS
    {200, 200, 200, 200, 64, 256, 256, 256}, // DN
    {100, 100, 100, 100, 32, 128, 128, 128}, // FS
    {512, 512, 512, 512, 128, 512, 256, 256}, // YA
    {1024, 1024, 1024, 1024, 256, 1024, 512, 512}, // YB
    {2049, 2049, 2049, 2049, 512, 2049, 512, 512}, // YN
}};

} // namespace

VariableCounts VariableCountsOf(ControllerVersion generation) {
    return Counts.at(static_cast<std::size_t>(generation));
}

Variables::Variables(ControllerVersion generation) {
    auto const counts = VariableCountsOf(generation);
    bytes.resize(counts.bytes);
    integers.resize(counts.integers);
    doubleInts.resize(counts.doubleInts);
    reals.resize(counts.reals);
    strings.resize(counts.strings);
    robotPositions.resize(counts.robotPositions);
    basePositions.resize(counts.basePositions);
    stationPositions.resize(counts.stationPositions);
    for (auto& text : strings) {
        text.reserve(MaxStringLength);
    }
}

} // namespace harvlink::simulator
