#include "gateway/sparkplug/Session.h"

#include <gtest/gtest.h>

#include "gateway/sparkplug/Commands.h"
#include "gateway/sparkplug/Device.h"
#include "gateway/sparkplug/Feeder.h"
#include "gateway/sparkplug/Forwarder.h"
#include "gateway/sparkplug/MemoryStore.h"

namespace harvlink::gateway::sparkplug {
namespace {

using namespace std::chrono_literals;
using Action = SessionAction;

SessionActions Born(Session& session, Moment now) {
    session.Tick(std::max(now, session.Deadline()));
    session.Reached(now);
    session.Accepted(now);
    return session.Subscribed(now);
}

TEST(SparkplugSession, RestsLongerWhereTheBrokerIsToBlame) {
    struct Case {
        Failure failure;
        std::vector<std::chrono::seconds> delays;
    };
    for (auto const& [failure, delays] :
         {Case{Failure::Unreachable, {1s, 2s, 4s, 4s}}, Case{Failure::ThrownOut, {1s, 2s, 4s, 8s, 16s, 32s, 60s, 60s}},
          Case{Failure::Refused, {60s, 60s}}}) {
        Moment now{};
        Session session({}, now);
        for (Milliseconds const delay : delays) {
            EXPECT_EQ(session.Tick(now), SessionActions{Action::Connect});
            EXPECT_EQ(session.Failed(failure, now), SessionActions{Action::Close});
            EXPECT_GE(session.Deadline() - now, delay * 8 / 10);
            EXPECT_LE(session.Deadline() - now, delay * 12 / 10);
            EXPECT_TRUE(session.Tick(session.Deadline() - 1ms).empty());
            now = session.Deadline();
        }
    }
}

TEST(SparkplugSession, HasALimitForEachStep) {
    Moment const start{};
    Session session({}, start);
    session.Tick(start);
    EXPECT_EQ(session.Deadline(), start + 4s);
    session.Reached(start);
    EXPECT_EQ(session.Deadline(), start + 10s);
    EXPECT_EQ(session.Accepted(start), SessionActions{Action::Subscribe});
    EXPECT_EQ(session.Tick(start + 10s), SessionActions{Action::Close});
    EXPECT_EQ(session.State(), SessionState::Waiting);
}

TEST(SparkplugSession, ServesARebirthOncePerInterval) {
    Moment const start{};
    Session session({}, start);
    EXPECT_TRUE(session.RebirthRequested(start).empty());
    EXPECT_EQ(Born(session, start), SessionActions{Action::Birth});
    EXPECT_EQ(session.RebirthRequested(start), SessionActions{Action::Rebirth});
    EXPECT_TRUE(session.RebirthRequested(start + 4999ms).empty());
    EXPECT_EQ(session.RebirthRequested(start + 5s), SessionActions{Action::Rebirth});
    EXPECT_EQ(session.Statistics().ignoredRebirths, 1U);
}

TEST(SparkplugSession, MovesOnToTheBrokerWhereTheHostIs) {
    Moment const start{};
    Session session({.servers = 2, .hasPrimaryHost = true}, start);
    EXPECT_TRUE(Born(session, start).empty());
    EXPECT_EQ(session.HostChanged({false, 1}, start), SessionActions{Action::Disconnect});
    EXPECT_EQ(session.Server(), 1U);
    EXPECT_TRUE(Born(session, start).empty());
    EXPECT_EQ(session.HostChanged({true, 0}, start), SessionActions{Action::Birth}); // each broker has times of its own
    EXPECT_EQ(session.Stop(start), SessionActions{Action::Death});
    EXPECT_EQ(session.Tick(start + 500ms), SessionActions{Action::Disconnect});
    EXPECT_EQ(session.State(), SessionState::Stopped);
}

TEST(SparkplugCommands, OnlyTrueRebirthsCount) {
    EXPECT_FALSE(ParseHostState(R"({"online":1,"timestamp":1})"));
    EXPECT_FALSE(ParseHostState(R"({"online":true,"timestamp":"1"})"));
    EXPECT_FALSE(ParseHostState("ONLINE"));
    EXPECT_FALSE(ParseHostState(R"({"online":true,"timestamp":18446744073709551615})"));
    EXPECT_EQ(ParseHostState(R"({"timestamp":7,"online":false,"more":[]})")->timestamp, 7);
    EXPECT_EQ(ParseCommands("\xff").refused.size(), 1U);
    EXPECT_EQ(ParseCommands(std::string(2U << 20U, '\0')).refused.size(), 1U);
}

TEST(SparkplugDevice, GivesEachChangeATimeOfItsOwn) {
    auto const controller = test::MakeController(1, "press1", {{recording::kind::ByteVariable, "B000"}});
    Device device(controller, 1);
    Sample sample = *test::MakeSample(controller, 0, {std::int64_t{0}});
    Timestamp last = device.Take(std::make_shared<Sample const>(sample))->time;
    for (std::int64_t value = 1; value < 20; ++value) { // all read in one millisecond
        sample.values = {value};
        Timestamp const time = device.Take(std::make_shared<Sample const>(sample))->time;
        EXPECT_EQ(time, std::exchange(last, time) + 1);
    }
    sample.moment.answer -= 1'000'000; // the clock was set back
    sample.values = {std::int64_t{0}};
    EXPECT_EQ(device.Take(std::make_shared<Sample const>(sample))->time, sample.moment.answer / 1000);
}

/// What was sent leaves the store only when the connection has held for the window; after a loss it is sent again.
TEST(SparkplugForwarder, KeepsTheWindowBeforeALoss) {
    MemoryStore store(1 << 20);
    Moment now{};
    Forwarder forwarder(store, 10s, 100, now);
    for (int i = 0; i < 30; ++i) {
        forwarder.Append(0, "waits", now);
    }
    forwarder.BeginSession(now);
    EXPECT_EQ(forwarder.Statistics().waiting, 30U);
    forwarder.Append(0, "live", now);
    forwarder.SentLive(forwarder.Next(), now);
    EXPECT_TRUE(forwarder.TakeHistorical(now).empty()); // nothing before its time
    now += 100ms;
    auto const records = forwarder.TakeHistorical(now);
    EXPECT_EQ(records.size(), 10U);
    forwarder.SentHistorical(records.size());
    forwarder.Settle(now + 9s);
    EXPECT_EQ(store.Statistics().first, 1U);
    forwarder.Settle(now + 10s);
    EXPECT_EQ(store.Statistics().first, 11U);
    forwarder.EndSession();
    forwarder.BeginSession(now);
    EXPECT_EQ(forwarder.Statistics().waiting, 21U); // the live one among them
}

TEST(SparkplugForwarder, CountsWhatWasDroppedUnsent) {
    MemoryStore store(40);
    Moment const now{};
    Forwarder forwarder(store, 10s, 1000, now);
    for (int i = 0; i < 10; ++i) {
        forwarder.Append(0, "ten bytes!", now);
    }
    EXPECT_EQ(forwarder.Statistics().dropped, 6U);
    forwarder.BeginSession(now);
    EXPECT_EQ(forwarder.TakeHistorical(now + 2ms).size(), 2U);
    for (int i = 0; i < 5; ++i) {
        forwarder.Append(0, "ten bytes!", now);
    }
    EXPECT_EQ(forwarder.Statistics().dropped, 8U); // two of the four had been sent, and the fifth is a live one
}

} // namespace
} // namespace harvlink::gateway::sparkplug
