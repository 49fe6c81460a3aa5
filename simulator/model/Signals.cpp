#include "simulator/model/Signals.h"

#include <algorithm>

namespace harvlink::simulator {

namespace {

constexpr std::array<std::array<SignalRange, 6>, 12> Ranges{{
    //  DS            DN            FS            YA            YB            YN
    {{{1, 256}, {1, 512}, {1, 128}, {1, 512}, {1, 512}, {1, 512}}}, // general input
    {{{1001, 1256}, {1001, 1512}, {1001, 1128}, {1001, 1512}, {1001, 1512}, {1001, 1512}}}, // general output
    {{{2001, 2256}, {2001, 2512}, {2001, 2128}, {2001, 2512}, {2001, 2128}, {2001, 2512}}}, // external input
    {{{2501, 2576}, {2701, 2956}, {2501, 2628}, {2701, 2956}, {2701, 2956}, {2701, 2956}}}, // network input
    {{{3001, 3256}, {3001, 3512}, {3001, 3128}, {3001, 3512}, {3001, 3128}, {3001, 3512}}}, // external output
    {{{3501, 3756}, {3701, 3956}, {3501, 3628}, {3701, 3956}, {3701, 3956}, {3701, 3956}}}, // network output
    {{{4001, 4160}, {4001, 4160}, {4001, 4160}, {4001, 4256}, {4001, 4256}, {4001, 4256}}}, // specific input
    {{{5001, 5200}, {5001, 5300}, {5001, 5200}, {5001, 5512}, {5001, 5512}, {5001, 5512}}}, // specific output
    {{{6001, 6064}, {6001, 6064}, {6001, 6064}, {6001, 6064}, {6001, 6064}, {6001, 6064}}}, // interface panel
    {{{7001, 7999}, {7001, 7999}, {7001, 7999}, {7001, 7999}, {7001, 7999}, {7001, 7999}}}, // auxiliary relay
    {{{8001, 8064}, {8001, 8200}, {8001, 8064}, {8001, 8512}, {8001, 8512}, {8001, 8512}}}, // robot control status
    {{{8201, 8220}, {8201, 8220}, {8201, 8220}, {8701, 8720}, {8701, 8720}, {8701, 8720}}}, // pseudo input
}};

} // namespace

SignalRange SignalRangeOf(IOType type, ControllerVersion generation) {
    return Ranges.at(static_cast<std::size_t>(type)).at(static_cast<std::size_t>(generation));
}

Signals::Signals(ControllerVersion generation) : values_(GroupLimit, 0), classes_(GroupLimit, NoClass) {
    for (std::size_t type = 0; type < Classes; ++type) {
        auto const range = SignalRangeOf(static_cast<IOType>(type), generation);
        std::fill(classes_.begin() + range.first, classes_.begin() + range.last + 1, static_cast<std::uint8_t>(type));
    }
}

std::optional<IOType> Signals::TypeOf(std::uint32_t group) const {
    if (group >= GroupLimit || classes_[group] == NoClass) {
        return std::nullopt;
    }
    return static_cast<IOType>(classes_[group]);
}

std::optional<std::uint8_t> Signals::ReadGroup(std::uint32_t group) const {
    if (!TypeOf(group)) {
        return std::nullopt;
    }
    return values_[group];
}

bool Signals::WriteGroup(std::uint32_t group, std::uint8_t value) {
    if (!TypeOf(group)) {
        return false;
    }
    values_[group] = value;
    return true;
}

std::optional<bool> Signals::Read(std::uint32_t address) const {
    auto const byte = ReadGroup(address / 10);
    if (!byte || address % 10 > 7) {
        return std::nullopt;
    }
    return ((*byte >> (address % 10)) & 1) != 0;
}

bool Signals::Write(std::uint32_t address, bool value) {
    auto const byte = ReadGroup(address / 10);
    if (!byte || address % 10 > 7) {
        return false;
    }
    auto const mask = static_cast<std::uint8_t>(1U << (address % 10));
    auto const cleared = static_cast<std::uint8_t>(*byte & ~mask);
    return WriteGroup(address / 10, static_cast<std::uint8_t>(value ? cleared | mask : cleared));
}

} // namespace harvlink::simulator
