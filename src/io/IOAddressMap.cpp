#include "io/IOAddressMap.h"

#include <array>
#include <cstddef>

// Two tables side by side, to be compared with the controller's manual. They are uneven on purpose and do not always
// agree; neither follows from the other. Rows are in the order of IOType.

namespace harvlink {
namespace {

constexpr std::size_t types = 12;
constexpr std::size_t columns = 6;

// clang-format off

/// Base and count of groups.
constexpr std::array<std::array<IOSelection, columns>, types> groups{{
    // DS            DN           FS           YA           YB           other
    {{{1, 256},     {1, 512},    {1, 128},    {1, 512},    {1, 512},    {1, 128}}},    // GeneralInput
    {{{1000, 256},  {1000, 512}, {1000, 128}, {1000, 512}, {1000, 512}, {1000, 128}}}, // GeneralOutput
    {{{2000, 256},  {2000, 512}, {2000, 128}, {2000, 512}, {2000, 128}, {2000, 128}}}, // ExternalInput
    {{{2500, 256},  {2700, 256}, {2500, 128}, {2700, 256}, {2700, 256}, {2500, 128}}}, // NetworkInput
    {{{3000, 256},  {3000, 512}, {3000, 128}, {3000, 512}, {3000, 128}, {3000, 128}}}, // ExternalOutput
    {{{3500, 256},  {3700, 256}, {3500, 128}, {3700, 256}, {3700, 256}, {2500, 128}}}, // NetworkOutput: 2500 is meant
    {{{4000, 160},  {4000, 160}, {4000, 160}, {4000, 256}, {4000, 256}, {4000, 160}}}, // SpecificInput
    {{{5000, 200},  {5000, 300}, {5000, 200}, {5000, 512}, {5000, 512}, {5000, 200}}}, // SpecificOutput
    {{{6000, 64},   {6000, 64},  {6000, 64},  {6000, 64},  {6000, 64},  {6000, 64}}},  // InterfacePanelInput
    {{{7000, 999},  {7000, 999}, {7000, 999}, {7000, 999}, {7000, 999}, {7000, 128}}}, // AuxiliaryRelay
    {{{8000, 64},   {8000, 128}, {8000, 64},  {8000, 512}, {8000, 512}, {8000, 64}}},  // RobotControlStatus
    {{{8200, 20},   {8200, 20},  {8200, 20},  {8700, 20},  {8700, 20},  {8200, 20}}},  // PseudoInput
}};

/// Lowest and highest address.
constexpr std::array<std::array<AddressRange, columns>, types> addresses{{
    // DS               DN              FS              YA              YB              other
    {{{10, 2567},      {10, 5127},     {10, 1287},     {10, 5127},     {10, 5127},     {10, 5127}}},     // GeneralInput
    {{{10010, 12567},  {10010, 15127}, {10010, 11287}, {10010, 15127}, {10010, 15127}, {10010, 15127}}}, // GeneralOutput
    {{{20010, 22567},  {20010, 25127}, {20010, 21287}, {20010, 25127}, {20010, 21287}, {20010, 25127}}}, // ExternalInput
    {{{25010, 25767},  {27010, 29567}, {25010, 26287}, {27010, 29567}, {27010, 29567}, {27010, 29567}}}, // NetworkInput
    {{{30010, 32567},  {30010, 35127}, {30010, 31287}, {30010, 35127}, {30010, 31287}, {30010, 35127}}}, // ExternalOutput
    {{{35010, 37567},  {37010, 39567}, {35010, 36287}, {37010, 39567}, {37010, 39567}, {37010, 39567}}}, // NetworkOutput
    {{{40010, 41607},  {40010, 41607}, {40010, 41607}, {40010, 42567}, {40010, 42567}, {40010, 42567}}}, // SpecificInput
    {{{50010, 52007},  {50010, 53007}, {50010, 52007}, {50010, 55127}, {50010, 55127}, {50010, 55127}}}, // SpecificOutput
    {{{60010, 60647},  {60010, 60647}, {60010, 60647}, {60010, 60647}, {60010, 60647}, {60010, 60647}}}, // InterfacePanelInput
    {{{70010, 79997},  {70010, 79997}, {70010, 79997}, {70010, 79997}, {70010, 79997}, {70010, 79997}}}, // AuxiliaryRelay
    {{{80010, 80647},  {80010, 82007}, {80010, 80647}, {80010, 85127}, {80010, 85127}, {80010, 85127}}}, // RobotControlStatus
    {{{82010, 82207},  {82010, 82207}, {82010, 82207}, {87010, 87207}, {87010, 87207}, {87010, 87207}}}, // PseudoInput
}};

// clang-format on

constexpr std::size_t ColumnOf(ControllerVersion version) {
    auto const number = static_cast<std::uint32_t>(version);
    return number < columns - 1 ? number : columns - 1;
}

template <typename Entry>
Entry Find(std::array<std::array<Entry, columns>, types> const& table, IOType type, ControllerVersion version) {
    auto const row = static_cast<std::uint32_t>(type);
    return row < types ? table[row][ColumnOf(version)] : Entry{};
}

} // namespace

IOSelection GetIOSelection(IOType type, ControllerVersion version) {
    return Find(groups, type, version);
}

AddressRange GetAddressRange(IOType type, ControllerVersion version) {
    return Find(addresses, type, version);
}

IOSelection GetGeneralInput(ControllerVersion version) {
    return GetIOSelection(IOType::GeneralInput, version);
}

IOSelection GetGeneralOutput(ControllerVersion version) {
    return GetIOSelection(IOType::GeneralOutput, version);
}

IOSelection GetExternalInput(ControllerVersion version) {
    return GetIOSelection(IOType::ExternalInput, version);
}

IOSelection GetNetworkInput(ControllerVersion version) {
    return GetIOSelection(IOType::NetworkInput, version);
}

IOSelection GetExternalOutput(ControllerVersion version) {
    return GetIOSelection(IOType::ExternalOutput, version);
}

IOSelection GetNetworkOutput(ControllerVersion version) {
    return GetIOSelection(IOType::NetworkOutput, version);
}

IOSelection GetSpecificInput(ControllerVersion version) {
    return GetIOSelection(IOType::SpecificInput, version);
}

IOSelection GetSpecificOutput(ControllerVersion version) {
    return GetIOSelection(IOType::SpecificOutput, version);
}

IOSelection GetInterfacePanelInput(ControllerVersion version) {
    return GetIOSelection(IOType::InterfacePanelInput, version);
}

IOSelection GetAuxiliaryRelay(ControllerVersion version) {
    return GetIOSelection(IOType::AuxiliaryRelay, version);
}

IOSelection GetRobotControlStatus(ControllerVersion version) {
    return GetIOSelection(IOType::RobotControlStatus, version);
}

IOSelection GetPsuedoInput(ControllerVersion version) {
    return GetIOSelection(IOType::PseudoInput, version);
}

} // namespace harvlink
