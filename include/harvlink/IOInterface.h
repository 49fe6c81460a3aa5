#pragma once

#include <bitset>
#include <cstdint>

#include "harvlink/StatusInfo.h"

namespace harvlink {

/// A class of signals. Each class owns a band of the address space; its size depends on the controller's generation.
enum class IOType : std::int32_t {
    GeneralInput = 0,
    GeneralOutput = 1,
    ExternalInput = 2,
    NetworkInput = 3,
    ExternalOutput = 4,
    NetworkOutput = 5,
    SpecificInput = 6,
    SpecificOutput = 7,
    InterfacePanelInput = 8,
    AuxiliaryRelay = 9,
    RobotControlStatus = 10,
    PseudoInput = 11,
};

/// Signals and registers.
///
/// Eight signals form a group of one byte. A signal's address is the number of its group in the map of all classes,
/// times ten, plus its bit, 0 to 7, so no address ends in 8 or 9; a byte or word is addressed by its first signal, a
/// multiple of ten. The groups of a class count from 1. A word is two groups in a row, the first in its low byte.
///
/// Everything may be read. Network inputs are written on every generation, general outputs and interface panel inputs
/// from `VersionYA` up. To write any other signal gives IOAddressNotWritable from `VersionYA` up and code 40961 below
/// it, where IOAddressNotWritable never comes. On every generation an address outside the map, or a byte or word whose
/// address is not a multiple of ten, gives code 40961, and a controller that is not in remote mode 65535.
///
/// To write network inputs, a byte is one exchange, a word two, and a bit a read and a write of its byte; to write the
/// others, each signal is one exchange. A read is one exchange, of a word two. None of this is atomic: after a failure in
/// the middle, what was written stays written.
///
/// A group outside its class gives InvalidIOGroup; for a bit, a bit outside 0 to 7 or an address that is below 10 or
/// ends in 8 or 9 gives InvalidBitValue; nothing is sent then. No answer gives ResponseTimeout. Outputs are cleared
/// first and stay cleared on failure. May be called from several threads at once; one exchange takes at most (1 +
/// retries) x time-out.
class IOInterface {
public:
    IOInterface() = default;
    IOInterface(IOInterface const&) = delete;
    IOInterface& operator=(IOInterface const&) = delete;
    virtual ~IOInterface() = default;

    /// One signal.
    /// @{
    virtual StatusInfo ReadBit(IOType type, unsigned short group, unsigned char bit, bool& value) = 0;
    virtual StatusInfo ReadBit(unsigned int address, bool& value) = 0;
    /// @}

    /// A group of eight signals.
    /// @{
    virtual StatusInfo ReadByte(IOType type, unsigned short group, std::bitset<8>& value) = 0;
    virtual StatusInfo ReadByte(unsigned int address, std::bitset<8>& value) = 0;
    /// @}
    /// Careful: for GeneralInput this form reads one group above the one that the bit-set form reads.
    virtual StatusInfo ReadByte(IOType type, unsigned short group, unsigned char& value) = 0;
    /// The group that an address begins.
    virtual StatusInfo ReadByte(unsigned int address, unsigned char& value) = 0;

    /// Two groups in a row. Address 0 gives InvalidIOGroup.
    /// @{
    virtual StatusInfo ReadWord(IOType type, unsigned short group, std::bitset<16>& value) = 0;
    virtual StatusInfo ReadWord(unsigned int address, std::bitset<16>& value) = 0;
    virtual StatusInfo ReadWord(IOType type, unsigned short group, unsigned short& value) = 0;
    virtual StatusInfo ReadWord(unsigned int address, unsigned short& value) = 0;
    /// @}

    /// Sets one signal.
    /// @{
    virtual StatusInfo WriteBit(unsigned int address, bool value) = 0;
    virtual StatusInfo WriteBit(IOType type, unsigned short group, unsigned char bit, bool value) = 0;
    /// @}

    /// Sets a group of eight signals. The value is not changed.
    /// @{
    virtual StatusInfo WriteByte(IOType type, unsigned short group, std::bitset<8>& value) = 0;
    virtual StatusInfo WriteByte(unsigned int address, std::bitset<8>& value) = 0;
    virtual StatusInfo WriteByte(IOType type, unsigned short group, unsigned char& value) = 0;
    virtual StatusInfo WriteByte(unsigned int address, unsigned char& value) = 0;
    /// @}

    /// Sets two groups in a row. By class, a word needs a second group: the last group of a class gives InvalidIOGroup.
    /// @{
    virtual StatusInfo WriteWord(IOType type, unsigned short group, std::bitset<16>& value) = 0;
    virtual StatusInfo WriteWord(unsigned int address, std::bitset<16>& value) = 0;
    virtual StatusInfo WriteWord(IOType type, unsigned short group, unsigned short& value) = 0;
    virtual StatusInfo WriteWord(unsigned int address, unsigned short& value) = 0;
    /// @}

    /// Reads a register. One that the controller does not have gives code 65535, "Register address is invalid.".
    virtual StatusInfo ReadRegister(unsigned short index, unsigned short& value) = 0;
    /// Writes a register. One above 2048, or that the controller does not have, gives InvalidVariableIndex.
    virtual StatusInfo WriteRegister(unsigned short index, unsigned short const& value) = 0;
    /// The same, bit by bit.
    /// @{
    virtual StatusInfo ReadRegister(unsigned short index, std::bitset<16>& value) = 0;
    virtual StatusInfo WriteRegister(unsigned short index, std::bitset<16> const& value) = 0;
    /// @}

    /// The address of a signal; 0 with a failed status if there is none. Sends nothing.
    virtual unsigned int ConvertIOGroupToBitAddress(IOType type, unsigned short group, unsigned char bit,
                                                    StatusInfo& status) = 0;
};

} // namespace harvlink
