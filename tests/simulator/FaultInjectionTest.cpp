#include <gtest/gtest.h>

#include "simulator/scene/Scene.h"
#include "support/VirtualClient.h"

namespace harvlink::test {
namespace {

using namespace simulator;
using namespace std::chrono_literals;

/// Reads byte variable 5 with this id and returns the datagrams that are sent at once.
std::vector<Delivery> Exchange(VirtualClient& client, unsigned id = 9) {
    auto request = RobotRequest(122, 5, 1, 14);
    request[idOffset] = static_cast<std::uint8_t>(id);
    EXPECT_EQ(client.Send(request), std::nullopt);
    return client.controller.TakeDeliveries();
}

unsigned IdOf(Delivery const& delivery) {
    return std::to_integer<unsigned>(delivery.bytes.at(idOffset));
}

void Arm(VirtualClient& client, Fault fault, unsigned count = 1) {
    client.controller.WithFaults([&](FaultInjector& faults) { faults.Arm(fault, count); });
}

constexpr std::size_t WholeSize = 33;

TEST(FaultInjection, SpoilsOneReplyToOrder) {
    struct Case {
        Fault fault;
        std::size_t count;
        bool (*isSpoiled)(Delivery const&);
    };
    for (auto const& [fault, count, isSpoiled] :
         {Case{Fault::Drop, 0, [](Delivery const&) { return true; }},
          Case{Fault::Delay, 0, [](Delivery const&) { return true; }},
          Case{Fault::Duplicate, 2, [](Delivery const& sent) { return IdOf(sent) == 9; }},
          Case{Fault::Truncate, 1, [](Delivery const& sent) { return sent.bytes.size() < WholeSize; }},
          Case{Fault::Extend, 1, [](Delivery const& sent) { return sent.bytes.size() > WholeSize; }},
          Case{Fault::WrongId, 1, [](Delivery const& sent) { return IdOf(sent) != 9 && IdOf(sent) < 128; }},
          Case{Fault::StaleId, 1, [](Delivery const& sent) { return IdOf(sent) == 8; }},
          Case{Fault::OtherPort, 1, [](Delivery const& sent) { return sent.source == Delivery::Source::FilePort; }},
          Case{Fault::OtherSource, 1,
               [](Delivery const& sent) { return sent.source == Delivery::Source::UnknownPort; }},
          Case{Fault::Restart, 0, [](Delivery const&) { return true; }}}) {
        VirtualClient client;
        Arm(client, fault);
        auto const spoiled = Exchange(client);
        ASSERT_EQ(spoiled.size(), count) << static_cast<int>(fault);
        EXPECT_TRUE(std::ranges::all_of(spoiled, isSpoiled)) << static_cast<int>(fault);
        auto const next = Exchange(client);
        ASSERT_EQ(next.size(), 1U) << static_cast<int>(fault);
        EXPECT_EQ(next[0].bytes.size(), WholeSize);
        EXPECT_EQ(IdOf(next[0]), 9U);
        EXPECT_EQ(next[0].source, Delivery::Source::RobotPort);
    }
}

TEST(FaultInjection, MisnumbersOnlyBlocks) {
    VirtualClient client;
    Arm(client, Fault::Misnumber, 2);
    auto const sent = [&](Bytes const& request, Port port) {
        EXPECT_EQ(client.Send(request, port), std::nullopt);
        auto const bytes = client.controller.TakeDeliveries().at(0).bytes;
        CommonHeader header;
        std::memcpy(&header, bytes.data(), sizeof(header));
        return header.blockNumber;
    };
    EXPECT_EQ(sent(RobotRequest(122, 5, 1, 14), Port::Robot), 0U);
    auto const list = FileRequest(50, Text("*.JBI"));
    auto const misnumbered = sent(list, Port::File);
    auto const right = sent(list, Port::File);
    EXPECT_NE(misnumbered, right);
    EXPECT_EQ(misnumbered & LastBlockFlag, right & LastBlockFlag);
    EXPECT_LE(misnumbered & ~LastBlockFlag, 4U);
}

TEST(FaultInjection, KeepsItsTimes) {
    VirtualClient client;
    Arm(client, Fault::Delay);
    EXPECT_TRUE(Exchange(client).empty());
    client.controller.Advance(19ms);
    EXPECT_TRUE(client.controller.TakeDeliveries().empty());
    EXPECT_TRUE(client.controller.IsActive());
    client.controller.Advance(1ms);
    EXPECT_EQ(client.controller.TakeDeliveries().size(), 1U);
    EXPECT_FALSE(client.controller.IsActive());

    Arm(client, Fault::Reorder);
    EXPECT_TRUE(Exchange(client, 1).empty());
    auto const swapped = Exchange(client, 2);
    ASSERT_EQ(swapped.size(), 2U);
    EXPECT_EQ(IdOf(swapped[0]), 2U);
    EXPECT_EQ(IdOf(swapped[1]), 1U);

    Arm(client, Fault::Silence);
    EXPECT_TRUE(Exchange(client).empty());
    client.controller.Advance(499ms);
    EXPECT_TRUE(Exchange(client).empty());
    client.controller.Advance(1ms);
    EXPECT_EQ(Exchange(client).size(), 1U);

    Arm(client, Fault::Silence);
    EXPECT_TRUE(Exchange(client).empty());
    client.controller.WithFaults([](FaultInjector& faults) { faults.SetPlan({}); }); // as "ctl faults none"
    EXPECT_EQ(Exchange(client).size(), 1U);
}

TEST(FaultInjection, RefusesWithoutCarryingOut) {
    VirtualClient client;
    client.controller.WithFaults([](FaultInjector& faults) {
        faults.SetPlan({.refuseCode = Refusal{1234}, .refuseCount = 2});
        faults.Arm(Fault::Refuse);
    });
    for (int const refused : {1234, 1234, 0}) {
        client.Send(RobotRequest(122, 5, 1, 16, U8(7)));
        auto const sent = client.controller.TakeDeliveries().at(0).bytes;
        EXPECT_EQ(std::to_integer<int>(sent[28]) + 256 * std::to_integer<int>(sent[29]), refused);
        client.controller.With(
            [&](ControllerModel& model) { EXPECT_EQ(model.variables.bytes[5], refused == 0 ? 7 : 0); });
    }
}

TEST(FaultInjection, RepeatsItselfBySeed) {
    auto const run = [](std::uint64_t seed) {
        FaultPlan plan;
        EXPECT_EQ(plan.Parse("drop=20%,duplicate=0.2,flip-bits=20%,truncate=20%,extend=20%"), "");
        plan.seed = seed;
        VirtualClient client({.faults = plan});
        std::vector<std::vector<std::byte>> sent;
        for (unsigned i = 0; i < 100; ++i) {
            for (auto const& delivery : Exchange(client, i)) {
                sent.push_back(delivery.bytes);
            }
        }
        return sent;
    };
    EXPECT_EQ(run(3), run(3));
    EXPECT_NE(run(3), run(4));
}

TEST(FaultInjection, SaysWhatIsWrongWithAPlan) {
    struct Case {
        char const* text;
        char const* problem; ///< its beginning
    };
    for (auto const& [text, problem] : {
             Case{"drop", "'drop' is not of the form name=number"},
             Case{"drop=", "'drop=' is not"},
             Case{"drop= x", "'drop= x' is not"},
             Case{"drop=1,,", "'' is not"},
             Case{"delay=3%, drop=200%", "drop must be from 0 to 100 %, not 200 %"},
             Case{"file-drop=2", "file-drop must be from 0 to 1, which is 100 %, not 2"},
             Case{"drop=nan", "drop must be from 0 to 1"},
             Case{"delay-ms=-1", "delay-ms must be from 0 to 3600000, not -1"},
             Case{"seed=7%", "seed is a number, not a share in %"},
             Case{"nothing=1", "there is no fault or setting 'nothing'; there are: drop, delay, "},
         }) {
        EXPECT_TRUE(FaultPlan{}.Parse(text).starts_with(problem)) << text << ": " << FaultPlan{}.Parse(text);
    }
}

TEST(FaultInjection, IsSetByNameInTextAndScene) {
    for (std::size_t i = 0; i < FaultKinds; ++i) {
        std::string const name(NameOf(static_cast<Fault>(i)));
        FaultPlan robotOnly;
        EXPECT_EQ(robotOnly.Parse(" " + name + " = 1 , file-" + name + "=0 %"), "");
        FaultPlan fileOnly;
        EXPECT_EQ(fileOnly.Parse("file-" + name + "=100%"), "");
        auto const scene = Scene::FromText("[faults]\n" + name + " = 1.0\n", "cell.toml").Options().faults;
        bool const isOfTargets = name == "buffer-full"; // targets use only the robot port
        struct Case {
            FaultPlan const& plan;
            unsigned onRobotPort, onFilePort;
        };
        for (auto const& [plan, onRobotPort, onFilePort] :
             {Case{scene, 1, isOfTargets ? 0U : 1U}, Case{robotOnly, 1, 0}, Case{fileOnly, 0, isOfTargets ? 0U : 1U}}) {
            auto const happened = [&, &faultPlan = plan](Bytes const& datagram, Port port) {
                VirtualClient client({.faults = faultPlan});
                client.Send(datagram, port);
                return client.controller.WithFaults(
                    [&](FaultInjector const& faults) { return faults.Happened(static_cast<Fault>(i)); });
            };
            EXPECT_EQ(happened(RobotRequest(842, 0, 0, 2), Port::Robot), onRobotPort) << name;
            EXPECT_EQ(happened(FileRequest(50, Text("*.JBI")), Port::File), onFilePort) << name;
        }
    }
}

TEST(FaultInjection, OtherPortReachesNoOtherClient) {
    auto const request = RobotRequest(122, 5, 1, 14);
    auto const listing = FileRequest(50, Text("*.JBI"));
    Reply reply;
    // The sockets are numbered. With one client it is known which ones belong together.
    for (auto const& [fileSockets, expected] :
         {std::pair(std::vector<std::uint64_t>{7}, 7U), {{7, 8}, 1U}, {std::vector<std::uint64_t>{}, 1U}}) {
        VirtualClient client;
        for (auto const socket : fileSockets) {
            client.controller.Handle(Port::File, socket, std::as_bytes(std::span(listing)), reply);
        }
        client.controller.TakeDeliveries();
        Arm(client, Fault::OtherPort);
        client.controller.Handle(Port::Robot, 1, std::as_bytes(std::span(request)), reply);
        auto const sent = client.controller.TakeDeliveries();
        ASSERT_EQ(sent.size(), 1U);
        EXPECT_EQ(sent[0].peer, expected);
        EXPECT_EQ(sent[0].source, Delivery::Source::FilePort);
    }
}

} // namespace
} // namespace harvlink::test
