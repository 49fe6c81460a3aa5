#pragma once

#include <cstdint>

#include "harvlink/ControllerVersion.h"
#include "harvlink/IOInterface.h"

namespace harvlink {

/// Where a class of signals lies, counted in groups.
struct IOSelection {
    std::uint16_t baseNumber = 0; ///< 0 for a class that does not exist
    std::uint16_t groupCount = 0; ///< the highest group number
};
static_assert(sizeof(IOSelection) == 4);

/// Lowest and highest address of a class of signals.
struct AddressRange {
    std::uint32_t lowest = 0;
    std::uint32_t highest = 0;

    constexpr bool Contains(std::uint32_t address) const { return address >= lowest && address <= highest; }
};

/// The groups of a class. A generation without a column of its own takes the one of the smallest.
IOSelection GetIOSelection(IOType type, ControllerVersion version);

/// The addresses of a class. A generation without a column of its own takes the one of the largest.
AddressRange GetAddressRange(IOType type, ControllerVersion version);

IOSelection GetGeneralInput(ControllerVersion version);
IOSelection GetGeneralOutput(ControllerVersion version);
IOSelection GetExternalInput(ControllerVersion version);
IOSelection GetNetworkInput(ControllerVersion version);
IOSelection GetExternalOutput(ControllerVersion version);
IOSelection GetNetworkOutput(ControllerVersion version);
IOSelection GetSpecificInput(ControllerVersion version);
IOSelection GetSpecificOutput(ControllerVersion version);
IOSelection GetInterfacePanelInput(ControllerVersion version); ///< the same for all
IOSelection GetAuxiliaryRelay(ControllerVersion version);
IOSelection GetRobotControlStatus(ControllerVersion version);
IOSelection GetPsuedoInput(ControllerVersion version);

} // namespace harvlink
