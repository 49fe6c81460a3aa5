#include "soak/ValueKind.h"

namespace harvlink::soak {

namespace {

constexpr unsigned GroupsOfAKind = 20;

/// The signal groups of a class that only one kind uses.
struct Groups {
    IOType type;
    unsigned first;

    unsigned short At(unsigned index) const { return static_cast<unsigned short>(first + index); }
};

WireImage RandomByte(Random& random) {
    return ImageOf(static_cast<std::uint8_t>(random()));
}

WireImage RandomWord(Random& random) {
    return ImageOf(static_cast<std::uint16_t>(random()));
}

ValueKind Kind(std::string name, std::size_t size, bool isPiecewise) {
    return {.name = std::move(name),
            .family = Family::IO,
            .count = GroupsOfAKind,
            .size = size,
            .isPiecewise = isPiecewise,
            .random = size == 1 ? RandomByte : RandomWord,
            .write = {},
            .read = {}};
}

ValueKind ByteKind(std::string name, IOInterface& io, Groups groups, bool isPiecewise) {
    auto kind = Kind(std::move(name), 1, isPiecewise);
    kind.write = [&io, groups](unsigned index, WireImage const& image) {
        auto value = image[0];
        return io.WriteByte(groups.type, groups.At(index), value);
    };
    kind.read = [&io, groups](unsigned index, WireImage& image) {
        std::bitset<8> value;
        auto status = io.ReadByte(groups.type, groups.At(index), value);
        image = ImageOf(static_cast<std::uint8_t>(value.to_ulong()));
        return status;
    };
    return kind;
}

/// Each word takes two groups. It is written by address and read by class, or the other way round.
ValueKind WordKind(std::string name, IOInterface& io, Groups groups) {
    auto kind = Kind(std::move(name), 2, true);
    auto const group = [groups](unsigned index) { return groups.At(2 * index); };
    kind.write = [&io, groups, group](unsigned index, WireImage const& image) {
        std::bitset<16> value(ValueAt<std::uint16_t>(image));
        return io.WriteWord(groups.type, group(index), value);
    };
    kind.read = [&io, groups, group](unsigned index, WireImage& image) {
        StatusInfo status;
        auto const address = io.ConvertIOGroupToBitAddress(groups.type, group(index), 0, status);
        std::uint16_t value = 0;
        status = io.ReadWord(address, value);
        image = ImageOf(value);
        return status;
    };
    return kind;
}

ValueKind BitKind(std::string name, IOInterface& io, Groups groups) {
    auto kind = Kind(std::move(name), 1, true);
    kind.write = [&io, groups](unsigned index, WireImage const& image) {
        StatusInfo status;
        for (unsigned char bit = 0; bit < 8 && status.StatusCode == 0; ++bit) {
            status = io.WriteBit(groups.type, groups.At(index), bit, (image[0] >> bit & 1) != 0);
        }
        return status;
    };
    kind.read = [&io, groups](unsigned index, WireImage& image) {
        StatusInfo status;
        image.assign(1, 0);
        for (unsigned char bit = 0; bit < 8 && status.StatusCode == 0; ++bit) {
            bool value = false;
            status = io.ReadBit(groups.type, groups.At(index), bit, value);
            image[0] = static_cast<std::uint8_t>(image[0] | (value ? 1U : 0U) << bit);
        }
        return status;
    };
    return kind;
}

} // namespace

std::vector<ValueKind> SignalKinds(QuorvanController& robot, bool isExtended) {
    auto& io = *robot.IO;
    std::vector<ValueKind> kinds{ByteKind("network input byte", io, {IOType::NetworkInput, 1}, false),
                                 WordKind("network input word", io, {IOType::NetworkInput, 31}),
                                 BitKind("network input bits", io, {IOType::NetworkInput, 81})};
    kinds.back().isReadAndWritten = true;
    if (isExtended) {
        kinds.push_back(ByteKind("output byte", io, {IOType::GeneralOutput, 101}, true));
        kinds.push_back(WordKind("output word", io, {IOType::GeneralOutput, 131}));
        kinds.push_back(BitKind("panel bits", io, {IOType::InterfacePanelInput, 1}));
    }
    return kinds;
}

} // namespace harvlink::soak
