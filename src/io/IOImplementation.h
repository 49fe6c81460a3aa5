#pragma once

#include <array>
#include <cstddef>

#include "harvlink/IOInterface.h"
#include "io/IOAddressMap.h"
#include "wire/NetworkManager.h"

namespace harvlink {

/// By which command a write goes to the controller.
enum class WriteCommand : std::uint8_t {
    OneSignal = 0, ///< UAPIWriteIO, from `VersionYA` up
    Group = 1, ///< IOData, eight signals at a time
    Refused = 2,
};

class IOImplementation final : public IOInterface {
public:
    explicit IOImplementation(NetworkManager* manager);

    StatusInfo ReadBit(IOType type, unsigned short group, unsigned char bit, bool& value) override;
    StatusInfo ReadBit(unsigned int address, bool& value) override;
    StatusInfo ReadByte(IOType type, unsigned short group, std::bitset<8>& value) override;
    StatusInfo ReadByte(unsigned int address, std::bitset<8>& value) override;
    StatusInfo ReadByte(IOType type, unsigned short group, unsigned char& value) override;
    StatusInfo ReadByte(unsigned int address, unsigned char& value) override;
    StatusInfo ReadWord(IOType type, unsigned short group, std::bitset<16>& value) override;
    StatusInfo ReadWord(unsigned int address, std::bitset<16>& value) override;
    StatusInfo ReadWord(IOType type, unsigned short group, unsigned short& value) override;
    StatusInfo ReadWord(unsigned int address, unsigned short& value) override;
    StatusInfo WriteBit(unsigned int address, bool value) override;
    StatusInfo WriteBit(IOType type, unsigned short group, unsigned char bit, bool value) override;
    StatusInfo WriteByte(IOType type, unsigned short group, std::bitset<8>& value) override;
    StatusInfo WriteByte(unsigned int address, std::bitset<8>& value) override;
    StatusInfo WriteByte(IOType type, unsigned short group, unsigned char& value) override;
    StatusInfo WriteByte(unsigned int address, unsigned char& value) override;
    StatusInfo WriteWord(IOType type, unsigned short group, std::bitset<16>& value) override;
    StatusInfo WriteWord(unsigned int address, std::bitset<16>& value) override;
    StatusInfo WriteWord(IOType type, unsigned short group, unsigned short& value) override;
    StatusInfo WriteWord(unsigned int address, unsigned short& value) override;
    StatusInfo ReadRegister(unsigned short index, unsigned short& value) override;
    StatusInfo WriteRegister(unsigned short index, unsigned short const& value) override;
    StatusInfo ReadRegister(unsigned short index, std::bitset<16>& value) override;
    StatusInfo WriteRegister(unsigned short index, std::bitset<16> const& value) override;
    unsigned int ConvertIOGroupToBitAddress(IOType type, unsigned short group, unsigned char bit,
                                            StatusInfo& status) override;

    /// Takes the address ranges of the engine's generation.
    void SetMinMaxVals();

    /// All zero for a type that does not exist.
    IOSelection GetIOSelection(IOType type) const;

    /// Group 0 of general inputs counts as valid here; ConvertIOGroupToBitAddress refuses it.
    bool IsGroupValid(IOType type, IOSelection selection, unsigned short group) const;
    bool IsAddressValid(unsigned int address, bool& isNetworkInput, bool& isInterfacePanel,
                        bool& isGeneralOutput) const;
    WriteCommand CheckAddressWriteable(unsigned int address, StatusInfo& status, bool isBitAddress) const;

    /// The one read of a group.
    std::bitset<8> ReadIO(unsigned int address, StatusInfo& status);
    unsigned char UINT8ReadIO(unsigned int address, StatusInfo& status);
    std::bitset<8> ReadIO(IOType type, unsigned short group, StatusInfo& status);
    unsigned char UINT8ReadIO(IOType type, unsigned short group, StatusInfo& status);

    /// The three writes. The bit set travels in its width in memory, 8 bytes; the controller takes the first.
    StatusInfo WriteIO(unsigned short group, std::bitset<8>& value);
    StatusInfo WriteIO(unsigned short group, unsigned char value);
    StatusInfo UAPIWriteIO(int address, unsigned char value);

    /// One signal at a time, lowest first; stops at the first failure.
    template <std::size_t bits>
    void UAPIWriteMultiBit(unsigned int group, std::bitset<bits> value, StatusInfo& status);

    unsigned char GetByteFromWord(std::bitset<16> word, unsigned char which) const;
    std::bitset<16> ConcatenateBits(std::bitset<8> low, std::bitset<8> high) const;
    unsigned short ConcatenateBits(unsigned char low, unsigned char high) const;

private:
    AddressRange const& Range(IOType type) const { return ranges[static_cast<std::size_t>(type)]; }
    template <typename Value>
    StatusInfo WriteRegisterValue(unsigned short index, Value value);

    std::array<AddressRange, 12> ranges{}; ///< by IOType
    NetworkManager* networkManager;
};

} // namespace harvlink
