#include <gtest/gtest.h>

#include "support/VirtualClient.h"

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
        EXPECT_EQ(CodeOf(client.Send(request, port).value_or(Bytes(32))), code);
    }
}

} // namespace
} // namespace harvlink::test
