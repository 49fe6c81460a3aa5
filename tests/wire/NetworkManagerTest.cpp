#include <algorithm>
#include <new>
#include <system_error>

#include "support/ScratchFolder.h"
#include "support/ScriptedController.h"
#include "wire/FakeTransport.h"

namespace harvlink::test {
namespace {

using enum ControllerVersion;
using enum ControlGroupId;

TEST(NetworkManager, ThePrefixNamesTheGeneration) {
    struct {
        char const* software;
        ControllerVersion version;
    } const cases[] = {
        {"DS3.00-00", VersionDS}, {"DN2", VersionDN},
        {"FS", VersionFS},        {"YA1.23.45(EN/US)-00XXXXX", VersionYA},
        {"YB", VersionYB},        {"YN9", VersionYN},
        {"", VersionUnknown},     {"D", VersionUnknown},
        {"ya1", VersionUnknown},  {" YA", VersionUnknown},
        {"ZZ9", VersionUnknown},
    };
    for (auto const& [software, version] : cases) {
        ScriptedController controller;
        EXPECT_EQ(controller.Connect(software)->controllerVersion, version) << software;
    }
}

TEST(NetworkManager, ProbeThatFailsLeavesItsStatus) {
    ScriptedController controller;
    Bytes const probe = RobotRequest(137, 11, 0, 1);
    StatusInfo status;
    controller.Expect(probe, {.payload = Text("YA"), .status = 8, .addedStatusSize = 2, .addedStatus = 40960});
    NetworkManager const refused(controller.Address(), 5000, 0, status);
    EXPECT_EQ(status.StatusCode, 40960);
    EXPECT_EQ(refused.controllerVersion, VersionUnknown);

    controller.Expect(probe, Replies{});
    NetworkManager const silent(controller.Address(), 4294968, 1, status); // wraps to 704 microseconds
    EXPECT_EQ(status.Message, "No response from controller after 1 retries.");
    EXPECT_EQ(silent.controllerVersion, VersionUnknown);
}

TEST(NetworkManager, ATextThatIsNotAnAddressShowsAsTimeout) {
    for (char const* const address : {"", "localhost", "127.0.0.300", "::1", "1.2.3.4.5"}) {
        StatusInfo status;
        NetworkManager const manager(address, 10, 0, status);
        EXPECT_EQ(status.StatusCode, 0x30006) << address;
    }
}

TEST(NetworkManager, IdsRunTo127AndWrapToZero) {
    FakeSession session;
    for (int i = 0; i < 300; ++i) {
        session.Exchange(i % 7 == 0 ? std::optional<unsigned char>(200) : std::nullopt);
    }
    for (std::size_t i = 0; i < 300; ++i) {
        EXPECT_EQ(session.record->sentIds[i], i % 7 == 0 ? 200 : (i + 2) % 128); // the probe took id 1
    }
}

TEST(NetworkManager, ListensForOnePeriodAndEachRetry) {
    for (unsigned const retries : {0U, 1U, 7U}) {
        FakeSession session(1500, retries);
        session.record->onReceive = FakeTransport::Silence;
        EXPECT_EQ(session.Exchange().StatusCode, 0x30006);
        EXPECT_EQ(session.record->sentIds.size(), 1U);
        ASSERT_EQ(session.record->periods.size(), retries + 1);
        for (std::chrono::microseconds const& period : session.record->periods) {
            EXPECT_EQ(period.count(), 1500000);
        }
    }
}

TEST(NetworkManager, TimeoutProductWrapsIn32Bits) {
    FakeSession session(4294968);
    session.Exchange();
    EXPECT_EQ(session.record->periods.front().count(), 704);
}

TEST(NetworkManager, TimeoutIsRaisedFourfoldAndPairsFromThreadsCancelOut) {
    FakeSession session(3);
    auto const period = [&] {
        session.Exchange();
        return session.record->periods.back().count();
    };
    session.manager.IncreaseTimeout();
    EXPECT_EQ(period(), 12000);
    session.manager.IncreaseTimeout();
    EXPECT_EQ(period(), 48000);
    for (long const expected : {12000, 3000, 750, 187, 46}) { // rounds toward zero
        session.manager.ResetTimeout();
        EXPECT_EQ(period(), expected);
    }
    FakeSession shared(100);
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&] {
                for (int round = 0; round < 500; ++round) {
                    shared.manager.IncreaseTimeout();
                    shared.Exchange();
                    shared.manager.ResetTimeout();
                }
            });
        }
    }
    shared.Exchange();
    EXPECT_EQ(shared.record->periods.back().count(), 100000);
}

TEST(NetworkManager, SystemErrorsBecomeStatuses) {
    std::system_error const refused(std::make_error_code(std::errc::connection_refused), "port");
    std::system_error const timedOut(10060, std::system_category());
    for (bool const whileSending : {true, false}) {
        FakeSession session;
        auto const raise = [&](std::system_error const& error) {
            if (whileSending) {
                session.record->onSend = [error] { throw error; };
            } else {
                session.record->onReceive = [error](auto, auto) -> std::size_t { throw error; };
            }
            return session.Exchange();
        };
        StatusInfo const other = raise(refused);
        EXPECT_EQ(other.StatusCode, ECONNREFUSED);
        EXPECT_EQ(other.Message, refused.what());
        StatusInfo const timeout = raise(timedOut);
        EXPECT_EQ(timeout.StatusCode, 0x30006);
        EXPECT_EQ(timeout.Message,
                  "Controller response timed out. Check connection to the controller or increase the timeout.");
        // Both locks are free again.
        session.record->onSend = nullptr;
        session.record->onReceive = FakeTransport::AnswerAtOnce;
        EXPECT_EQ(session.Exchange().StatusCode, 0);
    }
}

/// Whatever ended the wait, its answer may still come. Without a new port nothing may be sent; a lost route comes back.
TEST(NetworkManager, ANewPortFollowsEachExchangeWithoutAnAnswer) {
    std::function<std::size_t(std::uint8_t, std::span<std::byte>)> const ends[] = {
        FakeTransport::Silence,
        [](auto, auto) -> std::size_t { throw std::system_error(std::make_error_code(std::errc::io_error)); },
        [](auto, auto) -> std::size_t { throw std::bad_alloc(); },
    };
    for (auto const& end : ends) {
        FakeSession session(100, 0, {.enforced = NoRules.With(Rule::NewPort)});
        session.record->onReceive = end;
        try {
            EXPECT_NE(session.Exchange().StatusCode, 0);
        } catch (std::bad_alloc const&) {
        }
        session.record->onReceive = FakeTransport::AnswerAtOnce;
        session.record->onRenew = [] { return false; };
        for (unsigned attempt = 1; attempt <= 2; ++attempt) {
            StatusInfo const status = session.Exchange();
            EXPECT_EQ(status.StatusCode, 0x50007);
            EXPECT_TRUE(status.Message.ends_with("no route to it. (rule NewPort)")) << status.Message;
            EXPECT_EQ(session.record->renewals, attempt);
        }
        EXPECT_EQ(session.record->sentIds.size(), 1U) << "nothing leaves the old port";
        session.record->onRenew = [] { return true; };
        EXPECT_EQ(session.Exchange().StatusCode, 0);
        EXPECT_EQ(session.Exchange().StatusCode, 0);
        EXPECT_EQ(session.record->renewals, 3U);
    }
}

TEST(NetworkManager, PayloadSizeBeyondTheRecordIsCut) {
    ScriptedController controller;
    auto const manager = controller.Connect();
    OutgoingPacket<std::uint32_t> request;
    IncomingPacket<std::uint32_t> reply;
    request.header.payloadSize = 0xffff;
    controller.AnswerRest([](Datagram const&) { return Replies{{}}; });
    EXPECT_EQ(manager->SendAndReceive(request, reply, {}, true).StatusCode, 0);
    EXPECT_EQ(controller.Received(2).back().bytes.size(), 36U);
}

TEST(NetworkManager, GroupListKeepsTheFirstOfEach) {
    FakeSession session;
    NetworkManager& manager = session.manager;
    EXPECT_EQ(manager.GetNumberOfRobotsAttached(), 0U);
    for (auto const& group : {AttachedControlGroup(R1, 6), AttachedControlGroup(R8, 0xffffffff),
                              AttachedControlGroup(B1, 1), AttachedControlGroup(S1, 2), AttachedControlGroup(R1, 99)}) {
        manager.AddToControlGroupsAttached(group);
    }
    EXPECT_EQ(manager.GetNumberOfRobotsAttached(), 2U);
    EXPECT_EQ(manager.GetNumberOfAxesInGroup(R1), 6U);
    EXPECT_EQ(manager.GetNumberOfAxesInGroup(R8), 0xffffffffU);
    EXPECT_TRUE(manager.IsControlGroupAttached(S1));
    EXPECT_FALSE(manager.IsControlGroupAttached(R2));
}

TEST(NetworkManager, LogsUnlessSwitchedOff) {
    ScratchFolder const folder;
    FakeSession session;
    session.manager.SetLogging(false);
    session.manager.LogIfEnabled(StatusInformation(8));
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
    session.manager.SetLogging(true);
    session.manager.LogIfEnabled(StatusInformation(8));
    EXPECT_TRUE(ContentOf("HarvlinkLog.txt").ends_with(" Code (8): Requested command is undefined.\n"));
}

} // namespace
} // namespace harvlink::test
