#include "behaviour/Operation.h"

namespace harvlink::test {
namespace {

constexpr int invalidAddress = 40961;
constexpr int outputClass = static_cast<int>(IOType::GeneralOutput);
constexpr unsigned firstOutput = 10010; ///< address of the first general output

Script const readByte{{120, Pattern(1)}};
Script const readWord{{120, Pattern(1)}, {120, Pattern(1)}};

void AddReads(Operations& table) {
    Add<bool, int>(
        table, {{120, U8(8)}},
        BOTH(c.IO->ReadBit(IOType::GeneralOutput, 1, 3, out), io_interface_type_ReadBit, outputClass, 1, 3, out));
    Add<bool, int>(table, {{120, U8(8)}},
                   BOTH(c.IO->ReadBit(firstOutput + 3, out), io_interface_address_ReadBit, firstOutput + 3, out));
    Add<std::bitset<8>, unsigned>(
        table, readByte,
        BOTH(c.IO->ReadByte(IOType::GeneralOutput, 1, out), io_interface_type_ReadByte, outputClass, 1, out));
    Add<std::bitset<8>, unsigned>(
        table, readByte, BOTH(c.IO->ReadByte(firstOutput, out), io_interface_address_ReadByte, firstOutput, out));
    Add<unsigned char, unsigned char>(
        table, readByte,
        BOTH(c.IO->ReadByte(IOType::GeneralOutput, 1, out), io_interface_uint8_type_ReadByte, outputClass, 1, out));
    Add<unsigned char, unsigned char>(
        table, readByte, BOTH(c.IO->ReadByte(firstOutput, out), io_interface_uint8_address_ReadByte, firstOutput, out));
    Add<std::bitset<16>, unsigned>(
        table, readWord,
        BOTH(c.IO->ReadWord(IOType::GeneralOutput, 1, out), io_interface_type_ReadWord, outputClass, 1, out));
    Add<std::bitset<16>, unsigned>(
        table, readWord, BOTH(c.IO->ReadWord(firstOutput, out), io_interface_address_ReadWord, firstOutput, out));
    Add<unsigned short, unsigned short>(
        table, readWord,
        BOTH(c.IO->ReadWord(IOType::GeneralOutput, 1, out), io_interface_uint16_type_ReadWord, outputClass, 1, out));
    Add<unsigned short, unsigned short>(
        table, readWord,
        BOTH(c.IO->ReadWord(firstOutput, out), io_interface_uint16_address_ReadWord, firstOutput, out));
    Add<unsigned, unsigned>(
        table, {}, "io_interface_ConvertIOGroupToBitAddress",
        [](QuorvanController& c, unsigned& out) {
            StatusInfo status;
            out = c.IO->ConvertIOGroupToBitAddress(IOType::GeneralOutput, 1, 3, status);
            return status;
        },
        [](ControllerHandle h, unsigned* out) {
            IStatusInfo status;
            *out = io_interface_ConvertIOGroupToBitAddress(h, outputClass, 1, 3, &status);
            return status;
        });
}

struct Place {
    IOType type;
    unsigned address;
    int plainType = static_cast<int>(type);
};

/// A write with both kinds of commands: byte by byte to a network input, and signal by signal to a general output.
void AddWrite(Operations& table, char const* name, Script const& olderScript, std::size_t signals, bool isByAddress,
              auto onClass, auto onPlain) {
    auto const add = [&](Place const& place, Script const& script, int statusOnOlder) {
        Add(
            table, script, name, [=](QuorvanController& c, NoOutput&) { return onClass(*c.IO, place); },
            [=](ControllerHandle h, NoOutput*) { return onPlain(h, place); }, {.statusOnOlder = statusOnOlder});
    };
    add({IOType::NetworkInput, 27010}, olderScript, isByAddress ? invalidAddress : 0);
    add({IOType::GeneralOutput, firstOutput}, Script(signals, {909}), invalidAddress);
}

/// The type of `Value` selects the overload.
template <typename Value>
auto ByClass(auto write) {
    return [=](IOInterface& io, Place const& place) {
        Value value(0xa5);
        return write(io, place, value);
    };
}
auto const byteByType = [](IOInterface& io, Place const& p, auto& value) { return io.WriteByte(p.type, 1, value); };
auto const byteByAddress = [](IOInterface& io, Place const& p, auto& value) { return io.WriteByte(p.address, value); };
auto const wordByType = [](IOInterface& io, Place const& p, auto& value) { return io.WriteWord(p.type, 1, value); };
auto const wordByAddress = [](IOInterface& io, Place const& p, auto& value) { return io.WriteWord(p.address, value); };

auto ByPlainType(auto write) {
    return [=](ControllerHandle h, Place const& place) { return write(h, place.plainType, 1, 0xa5); };
}
auto ByPlainAddress(auto write) {
    return [=](ControllerHandle h, Place const& place) { return write(h, place.address, 0xa5); };
}

void AddWrites(Operations& table) {
    Script const bit{{120, Pattern(1)}, {120}};
    Script const byte{{120}};
    Script const word{{120}, {120}};
    AddWrite(
        table, "io_interface_type_WriteBit", bit, 1, false,
        [](IOInterface& io, Place const& p) { return io.WriteBit(p.type, 1, 3, true); },
        [](ControllerHandle h, Place const& p) { return io_interface_type_WriteBit(h, p.plainType, 1, 3, 1); });
    AddWrite(
        table, "io_interface_address_WriteBit", bit, 1, true,
        [](IOInterface& io, Place const& p) { return io.WriteBit(p.address + 3, true); },
        [](ControllerHandle h, Place const& p) { return io_interface_address_WriteBit(h, p.address + 3, 1); });
    AddWrite(table, "io_interface_type_WriteByte", byte, 8, false, ByClass<std::bitset<8>>(byteByType),
             ByPlainType(io_interface_type_WriteByte));
    AddWrite(table, "io_interface_address_WriteByte", byte, 8, true, ByClass<std::bitset<8>>(byteByAddress),
             ByPlainAddress(io_interface_address_WriteByte));
    AddWrite(table, "io_interface_uint8_type_WriteByte", byte, 8, false, ByClass<unsigned char>(byteByType),
             ByPlainType(io_interface_uint8_type_WriteByte));
    AddWrite(table, "io_interface_uint8_address_WriteByte", byte, 8, true, ByClass<unsigned char>(byteByAddress),
             ByPlainAddress(io_interface_uint8_address_WriteByte));
    AddWrite(table, "io_interface_type_WriteWord", word, 16, false, ByClass<std::bitset<16>>(wordByType),
             ByPlainType(io_interface_type_WriteWord));
    AddWrite(table, "io_interface_address_WriteWord", word, 16, true, ByClass<std::bitset<16>>(wordByAddress),
             ByPlainAddress(io_interface_address_WriteWord));
    AddWrite(table, "io_interface_uint16_type_WriteWord", word, 16, false, ByClass<unsigned short>(wordByType),
             ByPlainType(io_interface_uint16_type_WriteWord));
    AddWrite(table, "io_interface_uint16_address_WriteWord", word, 16, true, ByClass<unsigned short>(wordByAddress),
             ByPlainAddress(io_interface_uint16_address_WriteWord));
}

void AddRegisters(Operations& table) {
    // A refused instance has another code for a write, because a write converts codes like a variable.
    Traits const reading{.codes = {{40961, 65535}}};
    Traits const writing{.codes = {{40961, 0x30008}}};
    static constexpr unsigned value = 0xa5;
    Add<unsigned short, unsigned short>(table, {{121, Pattern(2)}},
                                        BOTH(c.IO->ReadRegister(7, out), io_interface_ReadRegister, 7, out), reading);
    Add<std::bitset<16>, unsigned>(table, {{121, Pattern(2)}},
                                   BOTH(c.IO->ReadRegister(7, out), io_interface_uint32_ReadRegister, 7, out), reading);
    Add(table, {{121}},
        BOTH(c.IO->WriteRegister(7, static_cast<unsigned short>(value)), io_interface_WriteRegister, 7, value),
        writing);
    Add(table, {{121}},
        BOTH(c.IO->WriteRegister(7, std::bitset<16>(value)), io_interface_uint32_WriteRegister, 7, &value), writing);
}

} // namespace

void AddSignalOperations(Operations& table) {
    AddReads(table);
    AddWrites(table);
    AddRegisters(table);
}

} // namespace harvlink::test
