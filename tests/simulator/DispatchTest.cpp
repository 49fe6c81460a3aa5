#include <random>

#include <gtest/gtest.h>

#include "VirtualClient.h"

namespace harvlink::test {
namespace {

using namespace simulator;

struct Asked {
    unsigned command, instance, attribute, service;
    Bytes payload;
    int code;
};

TEST(Dispatch, RefusesWhatTheCatalogueForbids) {
    std::vector<Asked> const cases{
        {0, 0, 0, 1, {}, 40960},
        {126, 1, 0, 1, {}, 40960},
        {843, 0, 0, 2, U32(0), 40960},
        {1023, 0, 0, 1, {}, 40960},
        {65535, 1, 0, 1, {}, 40960},
        {114, 1, 1, 1, {}, 40962},
        {114, 1, 0, 14, {}, 40962},
        {122, 1, 1, 2, U8(1), 40962},
        {127, 1, 1, 14, {}, 40962},
        {114, 2, 0, 1, {}, 40961},
        {112, 0, 0, 1, {}, 40961},
        {112, 5, 0, 1, {}, 40961},
        {131, 3, 1, 16, U32(1), 40961},
        {132, 1, 1, 16, U32(1), 40961},
        {924, 1, 0, 1, Words({4, 0, 22}), 40961},
        {122, 1, 1, 14, U8(1), 45059},
        {122, 1, 1, 16, {}, 45059},
        {122, 1, 1, 16, U16(1), 45059},
        {140, 1, 1, 16, Bytes(33), 45059},
        {133, 1, 1, 16, Bytes(31), 45059},
        {120, 2701, 1, 16, U16(1), 45059},
        {121, 1, 1, 16, U32(1), 45059},
        {924, 0, 0, 1, Words({4, 0}), 45059},
        {842, 0, 0, 2, Bytes(292), 45059},
    };
    VirtualClient client;
    for (auto const& asked : cases) {
        EXPECT_EQ(client.Ask(asked.command, asked.instance, asked.attribute, asked.service, asked.payload),
                  Refused(asked.code))
            << "command " << asked.command << " instance " << asked.instance;
    }
    EXPECT_EQ(client.controller.Traffic().refused, cases.size());
}

TEST(Dispatch, KnowsExtendedCommandsFromYA) {
    for (auto const generation :
         {ControllerVersion::VersionDS, ControllerVersion::VersionDN, ControllerVersion::VersionFS,
          ControllerVersion::VersionYA, ControllerVersion::VersionYB, ControllerVersion::VersionYN}) {
        VirtualClient client({.generation = generation});
        bool const isKnown = generation >= ControllerVersion::VersionYA;
        EXPECT_EQ(client.Ask(924, 0, 0, 1, Words({4, 0, 22})), isKnown ? (Answer{0, U32(1)}) : Refused(40960));
        EXPECT_EQ(client.Ask(909, 0, 0, 2, Words({10010, 1})), isKnown ? (Answer{0, U8(0)}) : Refused(40960));
    }
}

TEST(Dispatch, LeavesForeignDatagramsUnanswered) {
    VirtualClient client;
    auto const good = RobotRequest(114, 1, 0, 1);
    auto wrongMagic = good, wrongHeaderSize = good;
    wrongMagic[0] = 'X';
    wrongHeaderSize[4] = 33;
    for (auto const& datagram : {Bytes{}, Bytes(1), Bytes(good.begin(), good.end() - 1), wrongMagic, wrongHeaderSize}) {
        EXPECT_EQ(client.Send(datagram), std::nullopt) << datagram.size();
        EXPECT_EQ(client.Send(datagram, Port::File), std::nullopt) << datagram.size();
    }
    EXPECT_EQ(client.controller.Traffic().ignored, 10U);
    EXPECT_EQ(client.controller.Traffic().requests, 0U);
}

TEST(Dispatch, RefusesFormatErrorsOfBothPorts) {
    struct Case {
        Port port;
        Bytes request;
        int code;
    };
    auto const robot = RobotRequest(114, 1, 0, 1);
    auto const file = FileRequest(0x32, Text("*.JBI"));
    for (auto const& [port, request, code] :
         {Case{Port::Robot, file, 58531}, Case{Port::File, robot, 58531}, Case{Port::Robot, robot + U8(0), 45059},
          Case{Port::File, file + U8(0), 58535}, Case{Port::File, FileRequest(0x32, Bytes(480)), 58526}}) {
        VirtualClient client;
        auto const answer = client.Send(request, port).value_or(Bytes(32));
        EXPECT_EQ(answer[28] + 256 * answer[29], code);
    }
}

/// Requests of plausible and of arbitrary bytes, at both ports. Every answer must be a datagram of the protocol.
TEST(Dispatch, SurvivesRandomRequests) {
    std::mt19937 random(7);
    auto const pick = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
    constexpr std::array Services{1U, 2U, 14U, 16U, 9U, 21U, 22U, 50U};
    VirtualClient client({.groups = {{ControlGroupId::R1, 6}, {ControlGroupId::B1, 1}, {ControlGroupId::S1, 2}}});
    for (int i = 0; i < 20000; ++i) {
        Bytes payload(pick(4) == 0 ? pick(480) : std::array{0U, 4U, 8U, 12U, 36U, 52U, 296U}[pick(7)]);
        for (auto& value : payload) {
            value = static_cast<std::uint8_t>(pick(3) == 0 ? 0 : random());
        }
        bool const isFile = pick(3) == 0;
        if (isFile && pick(3) == 0) {
            payload = Text(pick(2) == 0 ? "*.JBI" : "PICK.JBI");
        }
        auto const command = pick(2) == 0 ? 112 + pick(30) : 829 + pick(160);
        auto datagram =
            isFile ? FileRequest(Services[4 + pick(4)], payload, pick(2), static_cast<std::uint32_t>(random()))
                   : RobotRequest(command, pick(3) == 0 ? pick(65536) : pick(3), pick(2), Services[pick(4)], payload);
        for (auto flips = pick(3); flips > 0; --flips) {
            datagram[6 + pick(26)] ^= static_cast<std::uint8_t>(random());
        }
        auto const answer = client.Send(datagram, isFile ? Port::File : Port::Robot);
        if (answer) {
            ASSERT_GE(answer->size(), 32U);
            ASSERT_LE(answer->size(), 32U + 479U);
            ASSERT_EQ((*answer)[idOffset], datagram[idOffset]);
        }
        client.controller.Advance(std::chrono::microseconds(100));
    }
}

} // namespace
} // namespace harvlink::test
