#include "io/IOImplementation.h"

#include "io/SignalRequests.h"
#include "wire/Guarded.h"

namespace harvlink {
namespace {

StatusInfo InvalidGroup() {
    return StatusInformation(ErrorStatusCodes::InvalidIOGroup);
}

StatusInfo InvalidBit() {
    return StatusInformation(ErrorStatusCodes::InvalidBitValue);
}

bool NamesBit(unsigned int address) {
    return address >= 10 && address % 10 < 8;
}

constexpr unsigned char lowByte = 1;
constexpr unsigned char highByte = 0;

} // namespace

StatusInfo IOImplementation::ReadBit(IOType type, unsigned short group, unsigned char bit, bool& value) {
    return Guarded(*networkManager, value, [&] {
        value = false;
        IOInterface& self = *this;
        StatusInfo status;
        unsigned int const address = self.ConvertIOGroupToBitAddress(type, group, bit, status);
        if (status.StatusCode != 0) {
            return status;
        }
        return bit > 7 || address < 10 ? InvalidBit() : self.ReadBit(address, value);
    });
}

StatusInfo IOImplementation::ReadBit(unsigned int address, bool& value) {
    return Guarded(*networkManager, value, [&] {
        value = false;
        if (!NamesBit(address)) {
            return InvalidBit();
        }
        StatusInfo status;
        std::bitset<8> const byte = ReadIO(address - address % 10, status);
        if (status.StatusCode == 0) {
            value = byte[address % 10];
        }
        return status;
    });
}

StatusInfo IOImplementation::ReadByte(IOType type, unsigned short group, std::bitset<8>& value) {
    return Guarded(*networkManager, value, [&] {
        StatusInfo status;
        std::bitset<8> const byte = ReadIO(type, group, status);
        value = status.StatusCode == 0 ? byte : 0;
        return status;
    });
}

StatusInfo IOImplementation::ReadByte(unsigned int address, std::bitset<8>& value) {
    return Guarded(*networkManager, value, [&] {
        StatusInfo status;
        std::bitset<8> const byte = ReadIO(address, status);
        value = status.StatusCode == 0 ? byte : 0;
        return status;
    });
}

StatusInfo IOImplementation::ReadByte(IOType type, unsigned short group, unsigned char& value) {
    return Guarded(*networkManager, value, [&] {
        StatusInfo status;
        unsigned char const byte = UINT8ReadIO(type, group, status);
        value = status.StatusCode == 0 ? byte : 0;
        return status;
    });
}

StatusInfo IOImplementation::ReadByte(unsigned int address, unsigned char& value) {
    return Guarded(*networkManager, value, [&] {
        StatusInfo status;
        unsigned char const byte = UINT8ReadIO(address, status);
        value = status.StatusCode == 0 ? byte : 0;
        return status;
    });
}

StatusInfo IOImplementation::ReadWord(IOType type, unsigned short group, std::bitset<16>& value) {
    return Guarded(*networkManager, value, [&] {
        value.reset();
        IOSelection const selection = GetIOSelection(type);
        // The last group passes, though its high byte lies in the next one; writing has a stricter test.
        if (!IsGroupValid(type, selection, group)) {
            return InvalidGroup();
        }
        unsigned int const address = (selection.baseNumber + group) * 10U;
        IOInterface& self = *this;
        return self.ReadWord(type == IOType::GeneralInput ? address - 10 : address, value);
    });
}

StatusInfo IOImplementation::ReadWord(unsigned int address, std::bitset<16>& value) {
    return Guarded(*networkManager, value, [&] {
        value.reset();
        if (address == 0) {
            return InvalidGroup();
        }
        SignalWordSequence sequence(address, value);
        return CarryOutAll(*networkManager, sequence);
    });
}

StatusInfo IOImplementation::ReadWord(IOType type, unsigned short group, unsigned short& value) {
    return Guarded(*networkManager, value, [&] {
        IOInterface& self = *this;
        std::bitset<16> bits;
        StatusInfo status = self.ReadWord(type, group, bits);
        value = static_cast<unsigned short>(bits.to_ulong());
        return status;
    });
}

StatusInfo IOImplementation::ReadWord(unsigned int address, unsigned short& value) {
    return Guarded(*networkManager, value, [&] {
        IOInterface& self = *this;
        std::bitset<16> bits;
        StatusInfo status = self.ReadWord(address, bits);
        value = static_cast<unsigned short>(bits.to_ulong());
        return status;
    });
}

StatusInfo IOImplementation::WriteBit(unsigned int address, bool value) {
    return Guarded(*networkManager, [&] {
        if (!NamesBit(address)) {
            return InvalidBit();
        }
        StatusInfo status;
        switch (CheckAddressWriteable(address, status, true)) {
        case WriteCommand::OneSignal:
            return UAPIWriteIO(static_cast<int>(address), value ? 1 : 0);
        case WriteCommand::Group: {
            // Read, change, write: another client's change between the two exchanges is lost.
            std::bitset<8> byte = ReadIO(address - address % 10, status);
            if (status.StatusCode != 0) {
                return status;
            }
            byte[address % 10] = value;
            return WriteIO(static_cast<std::uint16_t>(address / 10), byte);
        }
        default:
            return status;
        }
    });
}

StatusInfo IOImplementation::WriteBit(IOType type, unsigned short group, unsigned char bit, bool value) {
    return Guarded(*networkManager, [&] {
        IOInterface& self = *this;
        StatusInfo status;
        unsigned int const address = self.ConvertIOGroupToBitAddress(type, group, bit, status);
        return status.StatusCode != 0 ? status : self.WriteBit(address, value);
    });
}

StatusInfo IOImplementation::WriteByte(IOType type, unsigned short group, std::bitset<8>& value) {
    return Guarded(*networkManager, [&] {
        IOSelection const selection = GetIOSelection(type);
        // Neither an exception for low groups nor a subtraction for general inputs, unlike in reading.
        if (selection.groupCount < group || selection.baseNumber == 0) {
            return InvalidGroup();
        }
        IOInterface& self = *this;
        return self.WriteByte((selection.baseNumber + group) * 10U, value);
    });
}

StatusInfo IOImplementation::WriteByte(unsigned int address, std::bitset<8>& value) {
    return Guarded(*networkManager, [&] {
        StatusInfo status;
        switch (CheckAddressWriteable(address, status, false)) {
        case WriteCommand::OneSignal:
            UAPIWriteMultiBit<8>(address / 10, value, status);
            return status;
        case WriteCommand::Group:
            return WriteIO(static_cast<std::uint16_t>(address / 10), value);
        default:
            return status;
        }
    });
}

StatusInfo IOImplementation::WriteByte(IOType type, unsigned short group, unsigned char& value) {
    return Guarded(*networkManager, [&] {
        IOInterface& self = *this;
        std::bitset<8> bits(value);
        return self.WriteByte(type, group, bits);
    });
}

StatusInfo IOImplementation::WriteByte(unsigned int address, unsigned char& value) {
    return Guarded(*networkManager, [&] {
        IOInterface& self = *this;
        std::bitset<8> bits(value);
        return self.WriteByte(address, bits);
    });
}

StatusInfo IOImplementation::WriteWord(IOType type, unsigned short group, std::bitset<16>& value) {
    return Guarded(*networkManager, [&] {
        IOSelection const selection = GetIOSelection(type);
        // Strictly above: the word needs a second group.
        if (selection.baseNumber == 0 || selection.groupCount <= group) {
            return InvalidGroup();
        }
        IOInterface& self = *this;
        return self.WriteWord((selection.baseNumber + group) * 10U, value);
    });
}

StatusInfo IOImplementation::WriteWord(unsigned int address, std::bitset<16>& value) {
    return Guarded(*networkManager, [&] {
        StatusInfo status;
        auto const group = static_cast<std::uint16_t>(address / 10);
        switch (CheckAddressWriteable(address, status, false)) {
        case WriteCommand::OneSignal:
            UAPIWriteMultiBit<16>(address / 10, value, status);
            return status;
        case WriteCommand::Group:
            status = WriteIO(group, GetByteFromWord(value, lowByte));
            if (status.StatusCode != 0) {
                return status;
            }
            return WriteIO(static_cast<std::uint16_t>(group + 1), GetByteFromWord(value, highByte));
        default:
            return status;
        }
    });
}

StatusInfo IOImplementation::WriteWord(IOType type, unsigned short group, unsigned short& value) {
    return Guarded(*networkManager, [&] {
        IOInterface& self = *this;
        std::bitset<16> bits(value);
        return self.WriteWord(type, group, bits);
    });
}

StatusInfo IOImplementation::WriteWord(unsigned int address, unsigned short& value) {
    return Guarded(*networkManager, [&] {
        IOInterface& self = *this;
        std::bitset<16> bits(value);
        return self.WriteWord(address, bits);
    });
}

unsigned char IOImplementation::GetByteFromWord(std::bitset<16> word, unsigned char which) const {
    unsigned long const number = word.to_ulong();
    switch (which) {
    case highByte:
        return static_cast<unsigned char>(number >> 8U);
    case lowByte:
        return static_cast<unsigned char>(number);
    default:
        return 0;
    }
}

std::bitset<16> IOImplementation::ConcatenateBits(std::bitset<8> low, std::bitset<8> high) const {
    return ConcatenateBits(static_cast<unsigned char>(low.to_ulong()), static_cast<unsigned char>(high.to_ulong()));
}

unsigned short IOImplementation::ConcatenateBits(unsigned char low, unsigned char high) const {
    return static_cast<unsigned short>(low | high << 8U);
}

} // namespace harvlink
