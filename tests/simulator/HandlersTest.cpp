#include <gtest/gtest.h>

#include "io/IOAddressMap.h"
#include "support/VirtualClient.h"

namespace harvlink::test {
namespace {

using namespace simulator;

constexpr std::array Generations{ControllerVersion::VersionDS, ControllerVersion::VersionDN,
                                 ControllerVersion::VersionFS, ControllerVersion::VersionYA,
                                 ControllerVersion::VersionYB, ControllerVersion::VersionYN};

Answer Write(VirtualClient& client, unsigned command, unsigned instance, std::int64_t value) {
    return client.Ask(command, instance, 1, 16, U32(value));
}

TEST(State, NamesGenerationAndShowsWhatIsOn) {
    constexpr std::array<std::string_view, 6> Names{"DS", "DN", "FS", "YA", "YB", "YN"};
    for (std::size_t i = 0; i < Generations.size(); ++i) {
        VirtualClient client({.generation = Generations[i]});
        auto const info = client.Ask(137, 11, 0, 1);
        ASSERT_EQ(info.payload.size(), 48U);
        EXPECT_EQ(std::string_view(reinterpret_cast<char const*>(info.payload.data()), 2), Names[i]);
    }
    VirtualClient client;
    auto const words = [&] { return client.Ask(114, 1, 0, 1).payload; };
    EXPECT_EQ(words(), Words({0x82, 0}));
    client.controller.With([](ControllerModel& model) {
        model.SetCycle(CycleMode::Step);
        model.SetMode(Mode::Play);
        model.SetServo(true);
        model.SetError(true);
        model.SetHold(HoldSource::External, true);
    });
    EXPECT_EQ(words(), Words({0x41, 0x64}));
    EXPECT_EQ(client.Ask(114, 1, 1, 14).payload, U32(0x41));
}

TEST(State, KnowsGroupsTimesAndParametersThatExist) {
    struct Case {
        unsigned command, instance;
        Bytes payload;
        int code;
    };
    VirtualClient client(
        {.rs022 = 0, .groups = {{ControlGroupId::R2, 6}, {ControlGroupId::B2, 1}, {ControlGroupId::S3, 2}}});
    for (auto const& [command, instance, payload, code] : std::vector<Case>{{137, 12, {}, 0},
                                                                            {137, 13, {}, 45063},
                                                                            {137, 23, {}, 0},
                                                                            {137, 21, {}, 45063},
                                                                            {137, 101, {}, 0},
                                                                            {137, 102, {}, 45063},
                                                                            {136, 12, {}, 0},
                                                                            {136, 11, {}, 51200},
                                                                            {136, 123, {}, 0},
                                                                            {136, 124, {}, 51200},
                                                                            {136, 210, {}, 0},
                                                                            {136, 220, {}, 40961},
                                                                            {136, 145, {}, 40961},
                                                                            {136, 300, {}, 40961},
                                                                            {136, 301, {}, 0},
                                                                            {136, 302, {}, 45062},
                                                                            {924, 0, Words({0, 10, 7}), 0},
                                                                            {924, 0, Words({0, 1, 7}), 65535},
                                                                            {924, 0, Words({7, 0, 1}), 65534},
                                                                            {924, 0, Words({11, 0, 37}), 65534},
                                                                            {924, 0, Words({1, 1, 430}), 0},
                                                                            {924, 0, Words({4, 0, 22}), 0}}) {
        EXPECT_EQ(client.Ask(command, instance, 0, 1, payload).code, code) << command << " " << instance;
    }
    for (auto const& [number, group] : {std::pair{33, 2}, {34, 10}, {35, 19}, {36, 0}}) {
        EXPECT_EQ(client.Ask(924, 0, 0, 1, Words({11, 0, number})), (Answer{0, U32(group)}));
    }
}

TEST(State, CountsServoTimeOnlyWhileServoIsOn) {
    VirtualClient client;
    auto const elapsed = [&](unsigned instance) {
        auto const payload = client.Ask(136, instance, 0, 1).payload;
        return std::string(payload.begin() + 16, payload.end());
    };
    client.controller.Advance(std::chrono::seconds(61));
    EXPECT_EQ(elapsed(1), "009876:01'01");
    EXPECT_EQ(elapsed(10), "004321:00'00");
    Write(client, 131, 2, 1);
    client.controller.Advance(std::chrono::seconds(5));
    Write(client, 131, 2, 2);
    client.controller.Advance(std::chrono::seconds(9));
    EXPECT_EQ(elapsed(10), "004321:00'05");
}

/// Every kind keeps its values at its first and last index, refuses the index beyond, and does so in both numberings.
TEST(Variables, KeepTheirValuesWithinTheirBounds) {
    struct Kind {
        unsigned command;
        Bytes value;
        std::size_t VariableCounts::*count;
    };
    std::vector<Kind> const kinds{
        {122, U8(0x81), &VariableCounts::bytes},
        {123, U16(-2), &VariableCounts::integers},
        {124, U32(-70000), &VariableCounts::doubleInts},
        {125, U32(0x40490FDB), &VariableCounts::reals},
        {140, Bytes{'a', 0, 0xFF}, &VariableCounts::strings},
        {127, Words({19, 5, 2, 7, 1, 1, -2, 3, -4, 5, -6, 7, -8}), &VariableCounts::robotPositions},
        {128, Words({16, 1, 2, 3, 4, 5, 6, 7, -8}), &VariableCounts::basePositions},
        {129, Words({0, 1, 2, 3, 4, 5, 6, 7, -8}), &VariableCounts::stationPositions},
    };
    for (auto const generation : Generations) {
        for (unsigned const rs022 : {0U, 1U}) {
            VirtualClient client({.generation = generation, .rs022 = static_cast<int>(rs022)});
            for (auto const& kind : kinds) {
                bool const isRecord = kind.command >= 127 && kind.command <= 129;
                auto const read = [&](unsigned instance) {
                    return client.Ask(kind.command, instance, isRecord ? 0 : 1, isRecord ? 1 : 14);
                };
                auto const first = 1 - rs022;
                auto const last = first + static_cast<unsigned>(VariableCountsOf(generation).*kind.count) - 1;
                for (auto const instance : {first, last}) {
                    EXPECT_EQ(client.Ask(kind.command, instance, isRecord ? 0 : 1, isRecord ? 2 : 16, kind.value),
                              (Answer{0, U8(0)}));
                    EXPECT_EQ(read(instance), (Answer{0, kind.value}));
                }
                EXPECT_EQ(read(first + 1).payload.size(), kind.command == 140 ? 0 : kind.value.size());
                EXPECT_EQ(read(last + 1), Refused(40961)) << kind.command;
                EXPECT_EQ(read(first - 1), Refused(40961)) << kind.command;
            }
        }
    }
}

TEST(Variables, RefuseImpossiblePositions) {
    VirtualClient client({.toolCount = 8});
    for (auto const& [word, value, code] : {std::tuple{0, 55, 45068}, {0, 1, 45068}, {2, 8, 45069}, {3, 64, 45070}}) {
        std::vector<std::int64_t> words(13, 0);
        words[static_cast<std::size_t>(word)] = value;
        EXPECT_EQ(client.Ask(127, 1, 0, 2, Words(words)), Refused(code));
    }
}

/// The controller's signals are those that the library knows: no group before or after them belongs to the class.
TEST(IO, KnowsTheSignalsOfEachGeneration) {
    for (auto const generation : Generations) {
        VirtualClient client({.generation = generation});
        for (int number = 0; number < 12; ++number) {
            auto const type = static_cast<IOType>(number);
            auto const addresses = GetAddressRange(type, generation);
            unsigned const first = addresses.lowest / 10;
            unsigned const last = addresses.highest / 10;
            client.controller.With([&](ControllerModel& model) {
                EXPECT_NE(model.signals.TypeOf(first - 1), type) << number;
                EXPECT_NE(model.signals.TypeOf(last + 1), type) << number;
                EXPECT_EQ(model.signals.TypeOf(last), type) << number;
                model.signals.WriteGroup(first, 0xA5);
            });
            EXPECT_EQ(client.Ask(120, first, 1, 14), (Answer{0, U8(0xA5)})) << number;
        }
        EXPECT_EQ(client.Ask(120, 0, 1, 14), Refused(40961));
    }
}

TEST(IO, WritesByGroupAndByAddressInRemoteModeOnly) {
    VirtualClient client;
    auto const group = [&](unsigned number) { return client.Ask(120, number, 1, 14).payload; };
    auto const signal = [&](unsigned address, unsigned value) {
        return client.Ask(909, 0, 0, 2, Words({address, value}));
    };
    EXPECT_EQ(client.Ask(120, 2701, 1, 16, U8(0x81)).code, 0);
    EXPECT_EQ(group(2701), U8(0x81));
    EXPECT_EQ(client.Ask(120, 2701, 1, 16, U8(0x42) + Bytes(7)).code, 0);
    EXPECT_EQ(group(2701), U8(0x42));
    for (auto const address : {10010U, 10017U, 60647U}) {
        EXPECT_EQ(signal(address, 1).code, 0) << address;
    }
    EXPECT_EQ(group(1001), U8(0x81));
    EXPECT_EQ(signal(10010, 0).code, 0);
    EXPECT_EQ(group(1001), U8(0x80));
    for (auto const& [address, value, code] :
         {std::tuple{10018U, 1U, 40961}, {15130U, 1U, 40961}, {27010U, 1U, 45058}, {10010U, 2U, 45060}}) {
        EXPECT_EQ(signal(address, value), Refused(code)) << address;
    }
    EXPECT_EQ(client.Ask(120, 1001, 1, 16, U8(1)), Refused(45058));
    client.controller.With([](ControllerModel& model) { model.SetMode(Mode::Play); });
    EXPECT_EQ(signal(10010, 1), Refused(65535));
    EXPECT_EQ(client.Ask(120, 2701, 1, 16, U8(1)), Refused(65535));
    EXPECT_EQ(group(2701) + group(1001), U8(0x42) + U8(0x80));
}

TEST(IO, KeepsRegistersFromNumbersAndBitSets) {
    VirtualClient client;
    EXPECT_EQ(client.Ask(121, 999, 1, 16, U16(0x1234)).code, 0);
    EXPECT_EQ(client.Ask(121, 0, 1, 16, U16(0xBEEF) + Bytes(6)).code, 0);
    EXPECT_EQ(client.Ask(121, 999, 1, 14), (Answer{0, U16(0x1234)}));
    EXPECT_EQ(client.Ask(121, 0, 1, 14), (Answer{0, U16(0xBEEF)}));
    EXPECT_EQ(client.Ask(121, 1000, 1, 14), Refused(40961));
}

TEST(Faults, ListsNewestFirstAndForgetsNothingInHistory) {
    VirtualClient client;
    auto const raise = [&](int code, int subCode) {
        return client.Ask(916, 0, 0, 2, U16(code) + Text("Alarm text", 32) + U8(subCode) + U8(0)).code;
    };
    auto const code = [&](unsigned command, unsigned instance) {
        auto const payload = client.Ask(command, instance, 0, 1).payload;
        EXPECT_EQ(payload.size(), 60U);
        return payload.empty() ? -1 : payload[0] + 256 * payload[1];
    };
    EXPECT_EQ(raise(7999, 0), 45060);
    EXPECT_EQ(raise(9000, 0), 45060);
    for (int i = 0; i < 102; ++i) {
        EXPECT_EQ(raise(8015 + i % 10, i), 0);
    }
    EXPECT_EQ(client.Ask(112, 1, 0, 1).payload[4], 101);
    EXPECT_EQ(code(112, 4), 8023);
    EXPECT_EQ(code(113, 2001), 8016);
    EXPECT_EQ(code(113, 2100), 8017);
    for (auto const instance : {1U, 1001U, 3001U, 4001U}) {
        EXPECT_EQ(code(113, instance), 0);
    }
    for (auto const instance : {0U, 101U, 2000U, 2101U, 5001U}) {
        EXPECT_EQ(client.Ask(113, instance, 0, 1), Refused(40961)) << instance;
    }
    EXPECT_EQ(Write(client, 130, 1, 1).code, 0);
    EXPECT_EQ(code(112, 1), 0);
    EXPECT_EQ(code(113, 2001), 8016);
}

/// A sequence of steps: the request, the code of its reply, and the second word of the state after it.
TEST(Interlocks, ActOnEachOtherAsOnAController) {
    VirtualClient client;
    auto const set = [&](void (*change)(ControllerModel&)) { client.controller.With(change); };
    auto const expect = [&](unsigned command, unsigned instance, int value, int code, int word) {
        EXPECT_EQ(Write(client, command, instance, value).code, code) << command << " " << instance << " " << value;
        EXPECT_EQ(client.Ask(114, 1, 0, 1).payload[4], word) << command << " " << instance << " " << value;
    };
    expect(134, 1, 1, 0x2070, 0x00);
    expect(131, 2, 1, 0, 0x40);
    expect(131, 2, 3, 45060, 0x40);
    expect(131, 1, 1, 0, 0x48);
    expect(134, 1, 1, 0x2050, 0x48);
    expect(131, 1, 2, 0, 0x40);
    expect(134, 1, 1, 0x4060, 0x40);
    set([](ControllerModel& model) { model.RaiseAlarm(4107, 1, "Out of range"); });
    expect(131, 2, 1, 0x2060, 0x10);
    expect(130, 1, 1, 0, 0x00);
    set([](ControllerModel& model) { model.SetError(true); });
    expect(131, 2, 1, 0x2060, 0x20);
    expect(130, 2, 1, 0, 0x00);
    expect(131, 2, 1, 0, 0x40);
    set([](ControllerModel& model) { model.SetMode(Mode::Teach); });
    expect(131, 2, 1, 0x2080, 0x00);
    expect(132, 2, 3, 0x2100, 0x00);
    expect(131, 1, 1, 0, 0x08);
    expect(131, 1, 2, 0x2100, 0x08);
    set([](ControllerModel& model) { model.SetMode(Mode::Remote); });
    expect(132, 2, 4, 45060, 0x08);
    expect(132, 2, 3, 0, 0x08);
    EXPECT_EQ(client.Ask(114, 1, 1, 14).payload, U32(0x84));
    EXPECT_EQ(client.Ask(133, 1, 1, 16, Text("Part is ready")).code, 0);
    client.controller.With([](ControllerModel& model) { EXPECT_EQ(model.pendantText, "Part is ready"); });
}

} // namespace
} // namespace harvlink::test
