#include <array>
#include <cstring>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include "gateway/sparkplug/BackgroundStore.h"
#include "gateway/sparkplug/MemoryStore.h"
#include "gateway/sparkplug/Plant.h"

/// After each failure: nothing that was read before is missing at the host, the session is valid, and publishing goes on within
/// five seconds of its end.

namespace harvlink::test {
namespace {

using namespace std::chrono_literals;

constexpr auto BusyMachine = 3s; // for processes that wait for a processor among other tests

class SparkplugFailure : public testing::Test {
protected:
    bool GoesOn(std::int64_t from, std::chrono::milliseconds limit = 5s + BusyMachine) {
        return Eventually([&] { return plant.host->LiveValueOf(Counter::Metric) > from; }, limit);
    }
    void ExpectAll(std::int64_t count) {
        EXPECT_TRUE(Eventually([&] { return plant.host->HasAll(Counter::Metric, count); }))
            << testing::PrintToString(plant.host->Missing(Counter::Metric, count)) << " of " << count << " are missing";
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

/// Feeds a new controller with so many changes of a text.
void FeedTexts(gateway::Observer& node, std::uint32_t id, std::int64_t count, std::string const& end) {
    auto const controller = MakeController(id, fmt::format("press{}", id), {{recording::kind::StringVariable, "S000"}});
    std::vector<gateway::SamplePtr> samples;
    for (std::int64_t i = 0; i < count; ++i) {
        samples.push_back(MakeSample(controller, 0, {std::to_string(i) + end}, (i - count) * 1000));
    }
    node.Added(controller);
    Feed(node, samples, {MakeStateEvent(controller, FleetState::Online)});
}

/// More bytes than a connection takes at once: one message is then cut in two, others wait whole. False if the node goes on sending.
bool IsHeldUp(gateway::sparkplug::EdgeNode& node, Counter const& counter) {
    static std::uint32_t id = 100;
    for (int device = 0; device < 5; ++device, ++id) {
        FeedTexts(node, id, 100, std::string(10'000, 'x'));
    }
    return Eventually([&] {
        auto const sent = node.Statistics().data.liveValues;
        return Eventually([&, from = counter.Last()] { return counter.Last() > from + 25; }) &&
               node.Statistics().data.liveValues == sent;
    });
}

TEST_F(SparkplugFailure, BrokerTakesNothingForAWhile) {
    Tap tap(plant.broker.Address());
    plant.config.brokers = {{plant.broker.Address(), Tap::Port}};
    plant.config.keepAlive = 600s; // far longer than the link is held up
    auto node = plant.StartNode();
    Counter counter(*node);
    ASSERT_TRUE(GoesOn(20, 10s));
    tap.Freeze();
    EXPECT_TRUE(IsHeldUp(*node, counter));
    tap.Resume();
    ExpectAll(counter.Last());
    EXPECT_EQ(node->Statistics().session.losses, 0U);
}

TEST_F(SparkplugFailure, BrokerTakesNothingForLong) {
    Tap tap(plant.broker.Address());
    plant.config.brokers = {{plant.broker.Address(), Tap::Port}};
    plant.config.keepAlive = 600s; // so that only the waiting samples end the session
    plant.config.mostPending = 10'000;
    auto node = plant.StartNode();
    Counter counter(*node);
    ASSERT_TRUE(GoesOn(20, 10s));
    tap.Freeze();
    EXPECT_TRUE(IsHeldUp(*node, counter));
    FeedTexts(*node, 16, 10'001, "");
    EXPECT_TRUE(Eventually([&] { return node->Statistics().session.losses == 1; })) << "it waits without end";
    tap.Thaw();
    EXPECT_TRUE(GoesOn(counter.Last(), 15s));
    EXPECT_EQ(plant.host->Faults(), std::vector<std::string>{});
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
    KillableGateway(Plant& plant, std::atomic<std::int64_t>& last) {
        EXPECT_EQ(pipe(start_.data()), 0);
        process_ = fork();
        if (process_ == 0) {
            for (char go = 0; read(start_[0], &go, 1) != 1;) {
            }
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
        close(start_[0]);
        close(start_[1]);
    }

    void Start() { EXPECT_EQ(write(start_[1], "!", 1), 1); }

private:
    std::array<int, 2> start_{};
    pid_t process_ = -1;
};

class SparkplugKill : public SparkplugFailure, public testing::WithParamInterface<bool> {
protected:
    SparkplugKill() {
        // No session lasts so long that what it sent counts as arrived: a later host gets all of it again.
        plant.config.keepAlive = 30s;
        plant.host.reset(); // a process with threads is not one to fork from
    }

    /// A gateway of its own reads 150 values.
    void LiveUntilKilled(std::atomic<std::int64_t>& last, bool isBrokerAway) {
        KillableGateway gateway(plant, last);
        plant.host = std::make_unique<Host>(plant.broker.Address(), "scada");
        gateway.Start();
        if (isBrokerAway) {
            plant.broker.Kill();
        }
        EXPECT_TRUE(Eventually([&, from = last.load()] { return last > from + 150; }));
        if (isBrokerAway) {
            plant.broker.Start();
        }
        plant.host.reset();
    }
};

TEST_P(SparkplugKill, LosesASecondAtMost) {
    constexpr std::int64_t MostLost = 100; // a second, and as much again for a disk that is busy
    void* const memory = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    auto& last = *new (memory) std::atomic<std::int64_t>(0);
    std::vector<std::int64_t> ends;
    for (bool const isBrokerAway : {false, GetParam()}) {
        LiveUntilKilled(last, isBrokerAway);
        ends.push_back(last);
    }
    {
        KillableGateway gateway(plant, last);
        plant.host = std::make_unique<Host>(plant.broker.Address(), "scada");
        gateway.Start();
        EXPECT_TRUE(GoesOn(last, 10s));
        auto const isExcused = [&](std::int64_t missing) {
            return std::any_of(ends.begin(), ends.end(),
                               [&](std::int64_t end) { return missing > end - MostLost && missing <= end; });
        };
        auto const missing = [&] { return plant.host->Missing(Counter::Metric, ends.back() + 10); };
        EXPECT_TRUE(Eventually([&] {
            auto const values = missing();
            return std::all_of(values.begin(), values.end(), isExcused);
        })) << testing::PrintToString(missing())
            << " are missing";
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
    Series series(*node);
    series.FeedMany(8000);
    ASSERT_TRUE(Eventually([&] { return node->Statistics().store.dropped > 0; }));
    EXPECT_TRUE(Eventually([&] { return node->Statistics().store.bytes > 100'000; }));
    plant.broker.Start();
    ASSERT_TRUE(Eventually([&] { return node->Statistics().state == gateway::sparkplug::SessionState::Born; }));
    ASSERT_TRUE(Eventually([&] { return node->Statistics().store.waiting == 0; }))
        << node->Statistics().store.waiting << " of " << series.Last() << " are waiting, "
        << node->Statistics().store.dropped << " are dropped, " << node->Statistics().store.notStored << " not stored";
    auto const dropped = node->Statistics().store.dropped;
    EXPECT_TRUE(Eventually([&] { return plant.host->Missing(Counter::Metric, series.Last()).size() == dropped; }))
        << plant.host->Missing(Counter::Metric, series.Last()).size() << " are missing, " << dropped << " are counted";
    EXPECT_EQ(*plant.host->Missing(Counter::Metric, series.Last()).rbegin(), static_cast<std::int64_t>(dropped));
    EXPECT_EQ(plant.host->Faults(), std::vector<std::string>{});
}

TEST_F(SparkplugFailure, DamagedStoreCostsNoMoreThanWhatIsDamaged) {
    plant.config.store.valuesPerSecond = 20'000;
    plant.broker.Kill();
    auto node = plant.StartNode();
    Series series(*node);
    series.FeedMany(2000);
    std::int64_t const stored = series.Last();
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
    Counter counter(*node, stored + 1);
    EXPECT_TRUE(GoesOn(stored + 5, 10s));
    std::int64_t const last = counter.Stop();
    EXPECT_TRUE(Eventually([&] {
        return node->Statistics().damaged >= flipped &&
               plant.host->Missing(Counter::Metric, last).size() == node->Statistics().damaged;
    })) << plant.host->Missing(Counter::Metric, last).size()
        << " are missing, " << node->Statistics().damaged << " are counted";
    EXPECT_LE(node->Statistics().damaged, 3 * flipped);
    EXPECT_EQ(plant.host->Faults(), std::vector<std::string>{});
}

/// A disk that takes nothing until it is freed.
class StalledStore final : public gateway::sparkplug::MemoryStore {
public:
    StalledStore(std::shared_future<void> freed, std::promise<void>& gone)
        : MemoryStore(1 << 20), freed_(std::move(freed)), gone_(gone) {}
    ~StalledStore() override { gone_.set_value(); }
    void Commit() override { freed_.wait(); }

private:
    std::shared_future<void> freed_;
    std::promise<void>& gone_;
};

TEST_F(SparkplugFailure, StalledDiskHoldsUpNeitherLiveDataNorTheEnd) {
    std::promise<void> freed;
    std::promise<void> gone;
    auto store = std::make_unique<StalledStore>(freed.get_future().share(), gone);
    auto node = std::make_unique<gateway::sparkplug::EdgeNode>(
        plant.config, plant.log, std::make_unique<gateway::sparkplug::BackgroundStore>(std::move(store), 1 << 20));
    {
        Counter counter(*node);
        ASSERT_TRUE(Eventually([&] { return counter.Last() > 50; })); // beyond a commit
        EXPECT_TRUE(GoesOn(counter.Last() + 50));
    }
    auto const start = std::chrono::steady_clock::now();
    node.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 1s + BusyMachine);
    freed.set_value();
    gone.get_future().wait(); // the thread lets go of the store by itself
}

class SparkplugGarbage : public SparkplugFailure, public testing::WithParamInterface<std::string> {};

/// A broker that answers with anything but MQTT, and then one that does not.
TEST_P(SparkplugGarbage, IsSurvived) {
    plant.host.reset();
    plant.broker.Kill();
    auto const listener = ListenAt(plant.broker.Address(), 1883);
    ASSERT_GE(listener, 0);
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
    plant.host = std::make_unique<Host>(plant.broker.Address(), "scada");
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
