#include <cstring>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include "gateway/sparkplug/Plant.h"

/// After each failure: nothing that was read before is missing at the host, the session is valid, and publishing goes on within
/// five seconds of its end.

namespace harvlink::test {
namespace {

using namespace std::chrono_literals;
using gateway::sparkplug::EdgeNode;

class SparkplugFailure : public testing::Test {
protected:
    bool GoesOn(std::int64_t from, std::chrono::milliseconds limit = 5s) {
        return Eventually([&] { return plant.host->LiveValueOf(Counter::Metric) > from; }, limit);
    }
    void ExpectAll(std::int64_t count) {
        EXPECT_TRUE(Eventually([&] { return plant.host->HasAll(Counter::Metric, count); }))
            << plant.host->Missing(Counter::Metric, count).size() << " of " << count << " are missing, the first is "
            << *plant.host->Missing(Counter::Metric, count).begin();
        EXPECT_EQ(plant.host->Faults(), std::vector<std::string>{});
    }

    Plant plant;
};

TEST_F(SparkplugFailure, BrokerIsKilledAndRestarted) {
    auto node = plant.StartNode();
    Counter counter(*node);
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(GoesOn(counter.Last() + 10, 10s));
        plant.broker.Kill();
        ASSERT_TRUE(Eventually([&, from = counter.Last()] { return counter.Last() > from + 100; }));
        plant.broker.Start();
        EXPECT_TRUE(GoesOn(counter.Last()));
    }
    ExpectAll(counter.Stop());
    EXPECT_GT(plant.host->HistoricalValues(), 150U);
    EXPECT_EQ(node->Statistics().store.dropped, 0U);
}

TEST_F(SparkplugFailure, NetworkDropsEverything) {
    Tap tap(plant.broker.Address());
    plant.config.brokers = {{plant.broker.Address(), Tap::Port}};
    auto node = plant.StartNode();
    Counter counter(*node);
    ASSERT_TRUE(GoesOn(20, 10s));
    tap.Freeze();
    EXPECT_TRUE(Eventually([&] { return node->Statistics().session.losses == 1; }, 20s)) << "not noticed in time";
    ASSERT_TRUE(Eventually([&, from = counter.Last()] { return counter.Last() > from + 100; }));
    tap.Thaw();
    EXPECT_TRUE(GoesOn(counter.Last()));
    ExpectAll(counter.Stop());
}

TEST_F(SparkplugFailure, ClockIsSetBack) {
    auto node = plant.StartNode();
    Counter counter(*node);
    ASSERT_TRUE(GoesOn(10, 10s));
    counter.ShiftClock(-3'600'000'000);
    EXPECT_TRUE(GoesOn(counter.Last() + 10));
    plant.broker.Kill();
    counter.ShiftClock(-7'200'000'000);
    ASSERT_TRUE(Eventually([&, from = counter.Last()] { return counter.Last() > from + 50; }));
    plant.broker.Start();
    EXPECT_TRUE(GoesOn(counter.Last()));
    ExpectAll(counter.Stop());
}

/// A gateway in a process of its own, which can be killed without hurting the test.
class KillableGateway {
public:
    KillableGateway(Plant& plant, std::atomic<std::int64_t>& last) : process_(fork()) {
        if (process_ == 0) {
            auto node = plant.StartNode();
            Counter const counter(*node, last + 1, &last);
            for (;;) {
                pause();
            }
        }
    }
    KillableGateway(KillableGateway const&) = delete;
    KillableGateway& operator=(KillableGateway const&) = delete;
    ~KillableGateway() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }

private:
    pid_t process_;
};

class SparkplugKill : public SparkplugFailure, public testing::WithParamInterface<bool> {};

TEST_P(SparkplugKill, LosesASecondAtMost) {
    bool const isBrokerAway = GetParam();
    void* const memory = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    auto& last = *new (memory) std::atomic<std::int64_t>(0);
    plant.host.reset(); // a process with threads is not one to fork from
    std::vector<std::int64_t> ends;
    for (int i = 0; i < 3; ++i) {
        KillableGateway const gateway(plant, last);
        plant.host = std::make_unique<Host>(plant.broker.Address(), "scada");
        if (isBrokerAway && i == 1) {
            plant.broker.Kill();
        }
        ASSERT_TRUE(Eventually([&, from = last.load()] { return last > from + 150; }));
        if (isBrokerAway && i == 1) {
            plant.broker.Start();
        }
        if (i < 2) {
            plant.host.reset();
        } else {
            EXPECT_TRUE(GoesOn(last));
            EXPECT_TRUE(Eventually([&] { return plant.host->Missing(Counter::Metric, last).size() < 150; }));
            // What was read until a second before a kill is there. The host came late, and gets what it missed as well.
            for (std::int64_t const missing : plant.host->Missing(Counter::Metric, last - 50)) {
                EXPECT_TRUE(
                    std::any_of(ends.begin(), ends.end(), [&](std::int64_t end) { return missing > end - 50; }) ||
                    missing <= ends[0])
                    << missing;
            }
        }
        ends.push_back(last);
    }
    EXPECT_EQ(plant.host->Faults(), std::vector<std::string>{});
    munmap(memory, 4096);
}

INSTANTIATE_TEST_SUITE_P(Broker, SparkplugKill, testing::Bool(),
                         [](auto const& kill) { return kill.param ? "IsAway" : "IsThere"; });

TEST_F(SparkplugFailure, FullStoreDropsTheOldestAndCounts) {
    plant.config.store.maxBytes = 256 << 10;
    plant.config.store.valuesPerSecond = 20'000;
    plant.broker.Kill();
    auto node = plant.StartNode();
    Counter counter(*node);
    counter.Stop();
    counter.FeedMany(8000);
    ASSERT_TRUE(Eventually([&] { return node->Statistics().store.dropped > 0; }));
    EXPECT_TRUE(Eventually([&] { return node->Statistics().store.bytes > 100'000; }));
    plant.broker.Start();
    ASSERT_TRUE(Eventually([&] { return node->Statistics().state == gateway::sparkplug::SessionState::Born; }));
    ASSERT_TRUE(Eventually([&] { return node->Statistics().store.waiting == 0; }));
    auto const dropped = node->Statistics().store.dropped;
    EXPECT_TRUE(Eventually([&] { return plant.host->Missing(Counter::Metric, counter.Last()).size() == dropped; }))
        << plant.host->Missing(Counter::Metric, counter.Last()).size() << " are missing, " << dropped << " are counted";
    EXPECT_EQ(*plant.host->Missing(Counter::Metric, counter.Last()).rbegin(), static_cast<std::int64_t>(dropped));
    EXPECT_EQ(plant.host->Faults(), std::vector<std::string>{});
}

TEST_F(SparkplugFailure, DamagedStoreCostsNoMoreThanWhatIsDamaged) {
    plant.config.store.valuesPerSecond = 20'000;
    plant.broker.Kill();
    auto node = plant.StartNode();
    auto counter = std::make_unique<Counter>(*node);
    counter->FeedMany(2000);
    std::int64_t const stored = counter->Stop();
    counter.reset();
    node.reset();
    std::size_t flipped = 0;
    for (auto const& file : std::filesystem::directory_iterator(plant.config.store.folder)) {
        auto bytes = ContentOf(file.path());
        for (std::size_t place = 5000; place < bytes.size() && file.path().extension() == ".entries"; place += 20'000) {
            bytes[place] = static_cast<char>(~bytes[place]);
            ++flipped;
        }
        WriteFile(file.path(), bytes);
    }
    ASSERT_GT(flipped, 3U);
    plant.broker.Start();
    node = plant.StartNode();
    counter = std::make_unique<Counter>(*node, stored + 1);
    EXPECT_TRUE(GoesOn(stored + 5, 10s));
    std::int64_t const last = counter->Stop();
    EXPECT_TRUE(Eventually([&] {
        return node->Statistics().damaged >= flipped &&
               plant.host->Missing(Counter::Metric, last).size() == node->Statistics().damaged;
    })) << plant.host->Missing(Counter::Metric, last).size()
        << " are missing, " << node->Statistics().damaged << " are counted";
    EXPECT_LE(node->Statistics().damaged, 3 * flipped);
    EXPECT_EQ(plant.host->Faults(), std::vector<std::string>{});
}

class SparkplugGarbage : public SparkplugFailure, public testing::WithParamInterface<std::string> {};

/// A broker that answers with anything but MQTT, and then one that does not.
TEST_P(SparkplugGarbage, IsSurvived) {
    plant.host.reset();
    plant.broker.Kill();
    auto const listener = ListenAt(plant.broker.Address(), 1883);
    ASSERT_GE(listener, 0);
    plant.config.primaryHost.clear();
    auto node = plant.StartNode();
    Counter counter(*node);
    for (int i = 0; i < 2; ++i) {
        int const connection = accept(listener, nullptr, nullptr);
        SendAll(connection, GetParam());
        shutdown(connection, SHUT_WR);
        std::array<char, 4096> bytes{};
        while (recv(connection, bytes.data(), bytes.size(), 0) > 0) {
        }
        close(connection);
    }
    close(listener);
    plant.broker.Start();
    plant.host = std::make_unique<Host>(plant.broker.Address(), "");
    EXPECT_TRUE(GoesOn(counter.Last(), 12s));
}

INSTANTIATE_TEST_SUITE_P(Of, SparkplugGarbage,
                         testing::Values(std::string(64, '\xff'), std::string("HTTP/1.1 400 Bad Request\r\n\r\n"),
                                         std::string("\x20\x02\x00\x00\x90\x7f", 6), // accepted, then half a packet
                                         std::string("\x20\x02\x00\x00\x30\xff\xff\xff\x7f", 9), // a packet of 256 MB
                                         std::string("\x20\x02\x00\x00\x20\x02\x00\x00\xf0\x00", 10), // accepted twice
                                         std::string("\x30\x05\x00\x09spB", 7))); // a topic beyond its packet

} // namespace
} // namespace harvlink::test
