#include "binding/Binding.h"

using namespace harvlink::InteropHelper;
using harvlink::Binding::ControllerOf;

// The names by type take a class and a group, those by address an address; what differs besides is the form of the value.

namespace {

harvlink::IOInterface& IOOf(ControllerHandle handle) {
    return *ControllerOf(handle).IO;
}

harvlink::IOType ToClassSide(IOType type) {
    return static_cast<harvlink::IOType>(type);
}

template <typename... Place>
IStatusInfo ReadBit(ControllerHandle handle, int* value, Place... place) {
    bool bit = false;
    harvlink::StatusInfo const status = IOOf(handle).ReadBit(place..., bit);
    *value = ToInt32(bit);
    return ToPlain(status);
}

template <typename... Place>
IStatusInfo ReadByteBits(ControllerHandle handle, unsigned* value, Place... place) {
    std::bitset<8> bits;
    harvlink::StatusInfo const status = IOOf(handle).ReadByte(place..., bits);
    *value = static_cast<unsigned>(bits.to_ulong());
    return ToPlain(status);
}

template <typename... Place>
IStatusInfo ReadWordBits(ControllerHandle handle, unsigned* value, Place... place) {
    std::bitset<16> bits;
    harvlink::StatusInfo const status = IOOf(handle).ReadWord(place..., bits);
    *value = static_cast<unsigned>(bits.to_ulong());
    return ToPlain(status);
}

template <typename... Place>
IStatusInfo WriteByteBits(ControllerHandle handle, unsigned value, Place... place) {
    std::bitset<8> bits(value);
    return ToPlain(IOOf(handle).WriteByte(place..., bits));
}

template <typename... Place>
IStatusInfo WriteWordBits(ControllerHandle handle, unsigned value, Place... place) {
    std::bitset<16> bits(value);
    return ToPlain(IOOf(handle).WriteWord(place..., bits));
}

} // namespace

inline namespace harvlink_c {

IStatusInfo io_interface_type_ReadBit(ControllerHandle handle, IOType type, unsigned short group, unsigned char bit,
                                      int* value) {
    return ReadBit(handle, value, ToClassSide(type), group, bit);
}

IStatusInfo io_interface_address_ReadBit(ControllerHandle handle, unsigned address, int* value) {
    return ReadBit(handle, value, address);
}

IStatusInfo io_interface_type_ReadByte(ControllerHandle handle, IOType type, unsigned short group, unsigned* value) {
    return ReadByteBits(handle, value, ToClassSide(type), group);
}

IStatusInfo io_interface_address_ReadByte(ControllerHandle handle, unsigned address, unsigned* value) {
    return ReadByteBits(handle, value, address);
}

IStatusInfo io_interface_uint8_type_ReadByte(ControllerHandle handle, IOType type, unsigned short group,
                                             unsigned char* value) {
    return ToPlain(IOOf(handle).ReadByte(ToClassSide(type), group, *value));
}

IStatusInfo io_interface_uint8_address_ReadByte(ControllerHandle handle, unsigned address, unsigned char* value) {
    return ToPlain(IOOf(handle).ReadByte(address, *value));
}

IStatusInfo io_interface_type_ReadWord(ControllerHandle handle, IOType type, unsigned short group, unsigned* value) {
    return ReadWordBits(handle, value, ToClassSide(type), group);
}

IStatusInfo io_interface_address_ReadWord(ControllerHandle handle, unsigned address, unsigned* value) {
    return ReadWordBits(handle, value, address);
}

IStatusInfo io_interface_uint16_type_ReadWord(ControllerHandle handle, IOType type, unsigned short group,
                                              unsigned short* value) {
    return ToPlain(IOOf(handle).ReadWord(ToClassSide(type), group, *value));
}

IStatusInfo io_interface_uint16_address_ReadWord(ControllerHandle handle, unsigned address, unsigned short* value) {
    return ToPlain(IOOf(handle).ReadWord(address, *value));
}

IStatusInfo io_interface_address_WriteBit(ControllerHandle handle, unsigned address, int value) {
    return ToPlain(IOOf(handle).WriteBit(address, ToBool(value)));
}

IStatusInfo io_interface_type_WriteBit(ControllerHandle handle, IOType type, unsigned short group, unsigned char bit,
                                       int value) {
    return ToPlain(IOOf(handle).WriteBit(ToClassSide(type), group, bit, ToBool(value)));
}

IStatusInfo io_interface_type_WriteByte(ControllerHandle handle, IOType type, unsigned short group, unsigned value) {
    return WriteByteBits(handle, value, ToClassSide(type), group);
}

IStatusInfo io_interface_address_WriteByte(ControllerHandle handle, unsigned address, unsigned value) {
    return WriteByteBits(handle, value, address);
}

IStatusInfo io_interface_uint8_type_WriteByte(ControllerHandle handle, IOType type, unsigned short group,
                                              unsigned char value) {
    return ToPlain(IOOf(handle).WriteByte(ToClassSide(type), group, value));
}

IStatusInfo io_interface_uint8_address_WriteByte(ControllerHandle handle, unsigned address, unsigned char value) {
    return ToPlain(IOOf(handle).WriteByte(address, value));
}

IStatusInfo io_interface_type_WriteWord(ControllerHandle handle, IOType type, unsigned short group, unsigned value) {
    return WriteWordBits(handle, value, ToClassSide(type), group);
}

IStatusInfo io_interface_address_WriteWord(ControllerHandle handle, unsigned address, unsigned value) {
    return WriteWordBits(handle, value, address);
}

IStatusInfo io_interface_uint16_type_WriteWord(ControllerHandle handle, IOType type, unsigned short group,
                                               unsigned short value) {
    return ToPlain(IOOf(handle).WriteWord(ToClassSide(type), group, value));
}

IStatusInfo io_interface_uint16_address_WriteWord(ControllerHandle handle, unsigned address, unsigned short value) {
    return ToPlain(IOOf(handle).WriteWord(address, value));
}

IStatusInfo io_interface_ReadRegister(ControllerHandle handle, unsigned short index, unsigned short* value) {
    return ToPlain(IOOf(handle).ReadRegister(index, *value));
}

IStatusInfo io_interface_WriteRegister(ControllerHandle handle, unsigned short index, unsigned short value) {
    return ToPlain(IOOf(handle).WriteRegister(index, value));
}

IStatusInfo io_interface_uint32_ReadRegister(ControllerHandle handle, unsigned short index, unsigned* value) {
    std::bitset<16> bits(*value);
    harvlink::StatusInfo const status = IOOf(handle).ReadRegister(index, bits);
    *value = static_cast<unsigned>(bits.to_ulong());
    return ToPlain(status);
}

IStatusInfo io_interface_uint32_WriteRegister(ControllerHandle handle, unsigned short index, unsigned const* value) {
    std::bitset<16> const bits(*value);
    return ToPlain(IOOf(handle).WriteRegister(index, bits));
}

uint32_t io_interface_ConvertIOGroupToBitAddress(ControllerHandle handle, IOType type, unsigned short group,
                                                 unsigned char bit, IStatusInfo* status) {
    harvlink::StatusInfo result;
    unsigned const address = IOOf(handle).ConvertIOGroupToBitAddress(ToClassSide(type), group, bit, result);
    *status = ToPlain(result);
    return address;
}

} // namespace harvlink_c
