#include "io/IOImplementation.h"

#include "support/ScriptedController.h"

namespace harvlink::test {
namespace {

using enum ControllerVersion;
using enum IOType;

constexpr char const* invalidAddress = "The address is invalid.";
constexpr char const* invalidGroup = "This IO group is invalid.";
constexpr char const* notWritable = "This IO address cannot be written to.";
constexpr char const* needsRemote = "Writing to this address requires REMOTE mode.";
constexpr char const* invalidBit =
    "The bit value you are trying to access is invalid. Bit value must be between 0 and 7 "
    "and in a valid group.";
constexpr char const* ok = "OK";

/// A signal, a group or the first group of a word, by class or by address.
struct Place {
    std::optional<IOType> type;
    unsigned number;
    unsigned char bit = 0;
};
Place At(unsigned address) {
    return {{}, address};
}

struct Exchange {
    Bytes request;
    Reply reply{};
};
using Exchanges = std::vector<Exchange>;

Exchange Get(unsigned instance, Reply reply) {
    return {RobotRequest(120, instance, 1, 14), std::move(reply)};
}
Exchange Get(unsigned instance, int byte) {
    return Get(instance, Payload(U8(byte)));
}
/// A number is sent as one byte, a bit set with its size in memory.
Exchange PutNumber(unsigned instance, int byte, Reply reply = {}) {
    return {RobotRequest(120, instance, 1, 16, U8(byte)), std::move(reply)};
}
Exchange PutSet(unsigned instance, int byte, Reply reply = {}) {
    return {RobotRequest(120, instance, 1, 16, Little(byte, 8)), std::move(reply)};
}
Exchange Signal(unsigned address, int value, Reply reply = {}) {
    return {RobotRequest(909, 0, 0, 2, Words({address, value})), std::move(reply)};
}
/// Signals from a group on, lowest first.
Exchanges Signals(unsigned group, unsigned value, unsigned count) {
    Exchanges exchanges;
    for (unsigned i = 0; i < count; ++i) {
        exchanges.push_back(Signal((group + i / 8) * 10 + i % 8, static_cast<int>(value >> i & 1U)));
    }
    return exchanges;
}

class IOOperations : public testing::Test {
protected:
    /// Calls the operation, by class or by address, in the form that `Value` selects.
    template <typename Value>
    StatusInfo Read(IOInterface& io, Place const& place, Value& value) {
        auto const group = static_cast<std::uint16_t>(place.number);
        if constexpr (std::is_same_v<Value, bool>) {
            return place.type ? io.ReadBit(*place.type, group, place.bit, value) : io.ReadBit(place.number, value);
        } else if constexpr (sizeof(Value) == 2 || std::is_same_v<Value, std::bitset<16>>) {
            return place.type ? io.ReadWord(*place.type, group, value) : io.ReadWord(place.number, value);
        } else {
            return place.type ? io.ReadByte(*place.type, group, value) : io.ReadByte(place.number, value);
        }
    }
    template <typename Value>
    StatusInfo Write(IOInterface& io, Place const& place, Value value) {
        auto const group = static_cast<std::uint16_t>(place.number);
        if constexpr (std::is_same_v<Value, bool>) {
            return place.type ? io.WriteBit(*place.type, group, place.bit, value) : io.WriteBit(place.number, value);
        } else if constexpr (sizeof(Value) == 2 || std::is_same_v<Value, std::bitset<16>>) {
            return place.type ? io.WriteWord(*place.type, group, value) : io.WriteWord(place.number, value);
        } else {
            return place.type ? io.WriteByte(*place.type, group, value) : io.WriteByte(place.number, value);
        }
    }

    template <typename Value>
    void ExpectRead(ControllerVersion version, Place const& place, Exchanges const& exchanges, int code,
                    char const* message, Value expected) {
        IOImplementation io = Prepare(version, place, exchanges);
        Value value = static_cast<Value>(~0ULL);
        Check(Read(io, place, value), code, message, exchanges);
        EXPECT_EQ(value, expected) << Name(place);
    }
    template <typename Value>
    void ExpectWrite(ControllerVersion version, Place const& place, Value value, Exchanges const& exchanges, int code,
                     char const* message) {
        IOImplementation io = Prepare(version, place, exchanges);
        Check(Write(io, place, value), code, message, exchanges);
    }

    IOImplementation Prepare(ControllerVersion version, Place const& place, Exchanges const& exchanges) {
        name = Name(place);
        before = controller.Received().size();
        for (Exchange const& exchange : exchanges) {
            controller.Expect(exchange.request, exchange.reply);
        }
        manager->controllerVersion = version;
        return IOImplementation(manager.get());
    }
    void Check(StatusInfo const& status, int code, char const* message, Exchanges const& exchanges) {
        EXPECT_EQ(status.StatusCode, code) << name;
        EXPECT_EQ(status.Message, message) << name;
        EXPECT_EQ(controller.Received().size() - before, exchanges.size()) << name;
    }
    static std::string Name(Place const& place) {
        return (place.type ? "class " + std::to_string(static_cast<int>(*place.type)) + " group " : "address ") +
               std::to_string(place.number);
    }

    ScriptedController controller;
    std::unique_ptr<NetworkManager> manager = controller.Connect();
    std::string name;
    std::size_t before = 0;
};

TEST_F(IOOperations, ReadBits) {
    ExpectRead(VersionFS, At(27013), {Get(2701, 0x08)}, 0, ok, true);
    ExpectRead(VersionYA, At(27013), {Get(2701, 0xf7)}, 0, ok, false);
    ExpectRead(VersionYA, {ExternalInput, 1, 7}, {Get(2001, 0x80)}, 0, ok, true);
    ExpectRead(VersionYA, {GeneralInput, 1, 0}, {Get(1, 1)}, 0, ok, true);
    for (unsigned const address : {0U, 7U, 9U, 18U, 27018U, 27019U}) {
        ExpectRead(VersionYA, At(address), {}, 0x10004, invalidBit, false);
    }
    ExpectRead(VersionYA, {ExternalInput, 1, 8}, {}, 0x10004, invalidBit, false);
    ExpectRead(VersionYB, {ExternalInput, 129, 0}, {}, 0x20009, invalidGroup, false);
    ExpectRead(VersionYA, {GeneralInput, 0, 0}, {}, 0x20009, invalidGroup, false);
    ExpectRead(VersionYA, At(10), {Get(1, Refusal(40961))}, 40961, invalidAddress, false);
}

TEST_F(IOOperations, ReadBytes) {
    using Set = std::bitset<8>;
    using Number = std::uint8_t;
    ExpectRead(VersionYA, At(27013), {}, 40961, invalidAddress, Set());
    ExpectRead(VersionYA, At(27013), {}, 40961, invalidAddress, Number());
    ExpectRead(VersionFS, At(99990), {Get(9999, 0x5a)}, 0, ok, Set(0x5a)); // no range is checked
    ExpectRead(VersionFS, At(655370), {Get(1, 0x5a)}, 0, ok, Number{0x5a}); // 16 bits of instance
    // The number form of general inputs reads one group above.
    ExpectRead(VersionYA, {GeneralInput, 1}, {Get(1, 1)}, 0, ok, Set(1));
    ExpectRead(VersionYA, {GeneralInput, 1}, {Get(2, 2)}, 0, ok, Number{2});
    ExpectRead(VersionYA, {GeneralInput, 0}, {Get(0, 3)}, 0, ok, Set(3));
    ExpectRead(VersionYA, {GeneralInput, 0}, {Get(1, 4)}, 0, ok, Number{4});
    ExpectRead(VersionFS, {GeneralInput, 128}, {Get(128, 5)}, 0, ok, Set(5));
    ExpectRead(VersionFS, {GeneralInput, 129}, {}, 0x20009, invalidGroup, Set());
    ExpectRead(VersionFS, {GeneralInput, 129}, {}, 0x20009, invalidGroup, Number());
    ExpectRead(VersionYA, {ExternalInput, 0}, {Get(2000, 6)}, 0, ok, Set(6)); // group 0 is not refused
    ExpectRead(VersionYN, {NetworkOutput, 128}, {Get(2628, 7)}, 0, ok, Number{7});
    ExpectRead(VersionYA, {static_cast<IOType>(12), 1}, {}, 0x20009, invalidGroup, Set());
}

TEST_F(IOOperations, ReadWords) {
    using Set = std::bitset<16>;
    using Number = std::uint16_t;
    ExpectRead(VersionYA, At(10), {Get(1, 0x34), Get(2, 0x12)}, 0, ok, Number{0x1234});
    ExpectRead(VersionYA, At(0), {}, 0x20009, invalidGroup, Set());
    ExpectRead(VersionYA, At(15), {}, 40961, invalidAddress, Number());
    ExpectRead(VersionYA, {GeneralInput, 1}, {Get(1, 1), Get(2, 2)}, 0, ok, Number{0x0201});
    ExpectRead(VersionYA, {GeneralInput, 0}, {}, 0x20009, invalidGroup, Number());
    // The last group too, although its high byte belongs to the next class.
    ExpectRead(VersionYA, {ExternalInput, 512}, {Get(2512, 1), Get(2513, 2)}, 0, ok, Set(0x0201));
    ExpectRead(VersionYA, {ExternalInput, 513}, {}, 0x20009, invalidGroup, Set());
}

TEST_F(IOOperations, WriteBits) {
    ExpectWrite(VersionFS, At(25013), true, {Get(2501, 0x81), PutSet(2501, 0x89)}, 0, ok);
    ExpectWrite(VersionYA, At(27013), false, {Get(2701, 0xff), PutSet(2701, 0xf7, Refusal(65535))}, 65535, needsRemote);
    ExpectWrite(VersionYA, At(10010), true, {Signal(10010, 1)}, 0, ok);
    ExpectWrite(VersionUnknown, At(10010), true, {Signal(10010, 1)}, 0, ok);
    ExpectWrite(VersionYN, At(60017), false, {Signal(60017, 0, Refusal(65535))}, 65535, needsRemote);
    ExpectWrite(VersionFS, At(10010), true, {}, 40961, invalidAddress);
    ExpectWrite(VersionFS, At(12), true, {}, 40961, invalidAddress);
    ExpectWrite(VersionYA, At(12), true, {}, 0x30007, notWritable);
    for (unsigned const address : {0U, 9U, 10018U, 27019U}) {
        ExpectWrite(VersionYA, At(address), true, {}, 0x10004, invalidBit);
    }
    ExpectWrite(VersionYA, {GeneralOutput, 512, 7}, true, {Signal(15127, 1)}, 0, ok);
    ExpectWrite(VersionYA, {GeneralOutput, 513, 7}, true, {}, 0x20009, invalidGroup);
    ExpectWrite(VersionYA, {GeneralOutput, 1, 9}, true, {}, 0x10004, invalidBit);
}

TEST_F(IOOperations, WriteBytes) {
    using Set = std::bitset<8>;
    using Number = std::uint8_t;
    ExpectWrite(VersionYA, At(10010), Set(0x81), Signals(1001, 0x81, 8), 0, ok);
    ExpectWrite(VersionYA, At(60010), Number{0x7e}, Signals(6001, 0x7e, 8), 0, ok);
    ExpectWrite(VersionYA, At(27010), Set(0x5a), {PutSet(2701, 0x5a)}, 0, ok);
    ExpectWrite(VersionDS, At(25010), Number{0xa5}, {PutSet(2501, 0xa5, Refusal(40961))}, 40961, invalidAddress);
    ExpectWrite(VersionYA, At(27013), Number{1}, {}, 40961, invalidAddress);
    ExpectWrite(VersionFS, At(10010), Set(1), {}, 40961, invalidAddress);
    ExpectWrite(VersionYA, {GeneralOutput, 512}, Number{0x0f}, Signals(1512, 0x0f, 8), 0, ok);
    ExpectWrite(VersionYA, {GeneralOutput, 513}, Number{0x0f}, {}, 0x20009, invalidGroup);
    ExpectWrite(VersionYA, {NetworkInput, 256}, Set(1), {PutSet(2956, 1)}, 0, ok);
    // General inputs have no low groups, and nothing is subtracted. 256 x 10 + 10 is beyond the addresses of DS.
    ExpectWrite(VersionYA, {GeneralInput, 1}, Number{1}, {}, 0x30007, notWritable);
    ExpectWrite(VersionDS, {GeneralInput, 256}, Set(1), {}, 40961, invalidAddress);
    ExpectWrite(VersionYA, {static_cast<IOType>(-1), 0}, Set(1), {}, 0x20009, invalidGroup);
}

TEST_F(IOOperations, WriteWords) {
    using Set = std::bitset<16>;
    using Number = std::uint16_t;
    ExpectWrite(VersionYA, At(10010), Set(0x8421), Signals(1001, 0x8421, 16), 0, ok);
    ExpectWrite(VersionFS, At(25010), Number{0x1234}, {PutNumber(2501, 0x34), PutNumber(2502, 0x12)}, 0, ok);
    ExpectWrite(VersionYA, At(27011), Number{1}, {}, 40961, invalidAddress);
    ExpectWrite(VersionYA, {NetworkInput, 255}, Number{0xff00}, {PutNumber(2955, 0), PutNumber(2956, 255)}, 0, ok);
    ExpectWrite(VersionYA, {NetworkInput, 256}, Number{1}, {}, 0x20009, invalidGroup); // needs a second group
    ExpectWrite(VersionYA, {GeneralInput, 1}, Set(1), {}, 0x30007, notWritable);
    IOImplementation const io(manager.get());
    EXPECT_EQ(io.GetByteFromWord(0x1234, 0), 0x12);
    EXPECT_EQ(io.GetByteFromWord(0x1234, 1), 0x34);
    EXPECT_EQ(io.GetByteFromWord(0x1234, 2), 0);
    EXPECT_EQ(io.ConcatenateBits(Set(0x34).to_ulong(), std::bitset<8>(0x12)), Set(0x1234));
}

TEST_F(IOOperations, RegistersReadAndWriteUnevenly) {
    IOImplementation io(manager.get());
    std::uint16_t number = 0;
    for (unsigned const index : {0U, 3000U, 65535U}) { // the index has no limit here
        controller.Expect(RobotRequest(121, index, 1, 14), Payload(U16(1)));
        EXPECT_EQ(io.ReadRegister(static_cast<std::uint16_t>(index), number).StatusCode, 0);
    }
    controller.Expect(RobotRequest(121, 5, 1, 14), Refusal(40961));
    EXPECT_EQ(io.ReadRegister(5, number).Message, "Register address is invalid.");
    struct {
        unsigned index;
        std::optional<Reply> reply;
        int code;
    } const writes[] = {
        {5, Reply{}, 0},     {0, Reply{}, 0},      {2048, Reply{}, 0},
        {2049, {}, 0x30008}, {65535, {}, 0x30008}, {7, Refusal(40961), 0x30008},
    };
    for (auto const& [index, reply, code] : writes) {
        auto const instance = static_cast<std::uint16_t>(index);
        for (int const width : {2, 8}) {
            if (reply) {
                controller.Expect(RobotRequest(121, index, 1, 16, Little(0x1234, width)), *reply);
            }
            StatusInfo const status = width == 2 ? io.WriteRegister(instance, std::uint16_t{0x1234})
                                                 : io.WriteRegister(instance, std::bitset<16>(0x1234));
            EXPECT_EQ(status.StatusCode, code);
            EXPECT_EQ(status.Message == "The requested variable index is invalid.", code == 0x30008);
        }
    }
}

} // namespace
} // namespace harvlink::test
