#include "io/IOImplementation.h"
#include "io/SignalRequests.h"
#include "variables/VariableFunctions.h"
#include "wire/Guarded.h"

// The exchanges that reads and writes are made of.

namespace harvlink {
namespace {

constexpr int registersCountFromZero = 1; // as if RS022 were 1: the instance is the bare register number

} // namespace

std::bitset<8> IOImplementation::ReadIO(unsigned int address, StatusInfo& status) {
    return UINT8ReadIO(address, status);
}

unsigned char IOImplementation::UINT8ReadIO(unsigned int address, StatusInfo& status) {
    if (address % 10 != 0) {
        status = InvalidIOAddress();
        return 0;
    }
    unsigned char value = 0;
    status = CarryOut(*networkManager, SignalGroupRead(address), value);
    return value;
}

std::bitset<8> IOImplementation::ReadIO(IOType type, unsigned short group, StatusInfo& status) {
    IOSelection const selection = GetIOSelection(type);
    if (!IsGroupValid(type, selection, group)) {
        status = StatusInformation(ErrorStatusCodes::InvalidIOGroup);
        return 0;
    }
    unsigned int const address = (selection.baseNumber + group) * 10U;
    return ReadIO(type == IOType::GeneralInput ? address - 10 : address, status);
}

unsigned char IOImplementation::UINT8ReadIO(IOType type, unsigned short group, StatusInfo& status) {
    IOSelection const selection = GetIOSelection(type);
    if (!IsGroupValid(type, selection, group)) {
        status = StatusInformation(ErrorStatusCodes::InvalidIOGroup);
        return 0;
    }
    // Without the subtraction of 10 for general inputs, on purpose: this form reads one group above the other.
    return UINT8ReadIO((selection.baseNumber + group) * 10U, status);
}

StatusInfo IOImplementation::WriteIO(unsigned short group, std::bitset<8>& value) {
    return CarryOut(*networkManager, SignalGroupWrite<std::uint64_t>{group, value.to_ullong()});
}

StatusInfo IOImplementation::WriteIO(unsigned short group, unsigned char value) {
    return CarryOut(*networkManager, SignalGroupWrite<std::uint8_t>{group, value});
}

StatusInfo IOImplementation::UAPIWriteIO(int address, unsigned char value) {
    return CarryOut(*networkManager, SignalWrite{{static_cast<std::uint32_t>(address), value}});
}

template <std::size_t bits>
void IOImplementation::UAPIWriteMultiBit(unsigned int group, std::bitset<bits> value, StatusInfo& status) {
    unsigned int address = group * 10;
    for (std::size_t i = 0; i < bits; ++i) {
        status = UAPIWriteIO(static_cast<int>(address), value[i] ? 1 : 0);
        if (status.StatusCode != 0) {
            return;
        }
        address += (address + 1) % 10 >= 8 ? 3 : 1; // no address ends in 8 or 9
    }
}

template void IOImplementation::UAPIWriteMultiBit<8>(unsigned int, std::bitset<8>, StatusInfo&);
template void IOImplementation::UAPIWriteMultiBit<16>(unsigned int, std::bitset<16>, StatusInfo&);

/// Bound and refusal are those of variables, on purpose: a refused write is an invalid index, where a refused read is an
/// invalid register.
template <typename Value>
StatusInfo IOImplementation::WriteRegisterValue(unsigned short index, Value value) {
    return VariableFunctions::SetVariable(index, CommandNumber::RegisterData, value, networkManager,
                                          registersCountFromZero);
}

StatusInfo IOImplementation::ReadRegister(unsigned short index, unsigned short& value) {
    return Guarded(*networkManager, value, [&] { return CarryOut(*networkManager, RegisterRead{index}, value); });
}

StatusInfo IOImplementation::ReadRegister(unsigned short index, std::bitset<16>& value) {
    return Guarded(*networkManager, value, [&] {
        unsigned short number = 0;
        StatusInfo status = CarryOut(*networkManager, RegisterRead{index}, number);
        value = number;
        return status;
    });
}

StatusInfo IOImplementation::WriteRegister(unsigned short index, unsigned short const& value) {
    return Guarded(*networkManager, [&] { return WriteRegisterValue(index, value); });
}

StatusInfo IOImplementation::WriteRegister(unsigned short index, std::bitset<16> const& value) {
    return Guarded(*networkManager, [&] {
        // Like a byte, a bit set travels in its width in memory.
        return WriteRegisterValue(index, std::uint64_t{value.to_ullong()});
    });
}

} // namespace harvlink
