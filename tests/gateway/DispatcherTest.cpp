#include "gateway/watch/Dispatcher.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "simulator/network/Server.h"
#include "support/LoopbackAddress.h"

namespace harvlink::gateway {
namespace {

using namespace std::chrono_literals;

/// Keeps what it gets, and checks the order that is promised.
class Witness : public Observer {
public:
    void Added(ControllerPtr const& controller) override {
        std::scoped_lock const lock(mutex_);
        known_.insert(controller->name);
    }
    void Removed(ControllerPtr const& controller) override {
        std::scoped_lock const lock(mutex_);
        known_.erase(controller->name);
    }
    void Take(Batch const& batch) override {
        std::scoped_lock const lock(mutex_);
        for (SamplePtr const& sample : batch.samples) {
            EXPECT_TRUE(known_.contains(sample->controller->name));
            samples_.push_back(sample);
        }
        events_.insert(events_.end(), batch.events.begin(), batch.events.end());
        changed_.notify_all();
    }

    template <typename Condition>
    bool WaitFor(Condition const& condition) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, 20s, [&] { return condition(samples_, events_); });
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::set<std::string> known_;
    std::vector<SamplePtr> samples_;
    std::vector<Event> events_;
};

auto HasRegister(std::int64_t value, recording::RecordedQuality quality = recording::RecordedQuality::Good) {
    return [=](auto const& samples, auto const&) {
        return std::any_of(samples.begin(), samples.end(), [&](SamplePtr const& sample) {
            return sample->controller->readings[sample->reading].name == "register 4" &&
                   sample->moment.quality == quality && sample->values.at(0) == recording::RecordedValue(value);
        });
    };
}

auto HasLink(char const* kind) {
    return [=](auto const&, auto const& events) {
        return std::any_of(events.begin(), events.end(), [&](Event const& event) { return event.record.kind == kind; });
    };
}

TEST(LatestTableTest, BringsACopyUpToDate) {
    using recording::RecordedQuality;
    std::vector<FleetGroup> const groups{{.period = 10ms, .items = {FleetItem::Register(3, 2)}}};
    auto const press = std::make_shared<Controller const>(Controller{1, "press", "", ReadingsOf(groups), {}, {}});
    auto const sample = [&](std::uint32_t reading, RecordedQuality quality, std::int64_t value) {
        return std::make_shared<Sample const>(Sample{press, reading, {quality, 0, 1, 2, 3}, {value}});
    };
    LatestTable table;
    LatestCopy copy;
    table.Added(press);
    std::vector<SamplePtr> const first{sample(0, RecordedQuality::Good, 5), sample(1, RecordedQuality::Good, 6)};
    table.Take({first, {}});
    table.BringUpToDate(copy);
    EXPECT_TRUE(copy.isWhole);
    ASSERT_EQ(copy.changed.size(), 1U);
    EXPECT_EQ(copy.changed.front()->samples, first);

    // The same value again is an answer, but not another value.
    std::vector<SamplePtr> const second{sample(0, RecordedQuality::Stale, 5), sample(1, RecordedQuality::Good, 6)};
    table.Take({second, {}});
    table.BringUpToDate(copy);
    EXPECT_FALSE(copy.isWhole);
    ASSERT_EQ(copy.changed.size(), 1U);
    EXPECT_EQ(copy.changed.front()->samples, (std::vector{second[0], first[1]}));
    EXPECT_GT(copy.changed.front()->versions[0], copy.versionBefore);
    EXPECT_LE(copy.changed.front()->versions[1], copy.versionBefore);
    EXPECT_GT(copy.changed.front()->answerVersion, copy.versionBefore);

    table.BringUpToDate(copy);
    EXPECT_TRUE(copy.changed.empty());
    table.Removed(press);
    table.BringUpToDate(copy);
    EXPECT_TRUE(copy.isWhole && copy.controllers.empty() && copy.changed.empty());
}

TEST(DispatcherTest, GivesSamplesAndEventsToAllObservers) {
    simulator::Server server;
    std::string const address = test::NextLoopbackAddress();
    auto& controller = server.Add(address);
    ASSERT_TRUE(server.Start()) << server.Error();
    controller.With([](auto& model) { model.registers[4] = 77; });

    Fleet fleet;
    Log log([](auto, auto const&) {});
    Dispatcher dispatcher(fleet, log);
    auto const early = std::make_shared<Witness>();
    dispatcher.Add(early);
    std::vector<FleetGroup> const groups{{.period = 10ms, .items = {FleetItem::Register(3, 2), FleetItem::State()}},
                                         {.period = 50ms, .items = {FleetItem::Register(4)}}};
    auto const press = std::make_shared<Controller const>(Controller{1, "press", address, ReadingsOf(groups), {}, {}});
    ASSERT_EQ(press->readings.size(), 3); // a row is spread out, and what two groups read is there once
    dispatcher.Add(press, groups);
    ASSERT_EQ(fleet.Add("press", {.address = address, .timeout = 100, .retries = 1}, groups).StatusCode, 0);
    ASSERT_EQ(fleet.Start().StatusCode, 0);
    EXPECT_TRUE(early->WaitFor(HasRegister(77)));
    EXPECT_TRUE(early->WaitFor(HasLink("online")));

    auto const late = std::make_shared<Witness>();
    dispatcher.Add(late);
    EXPECT_TRUE(late->WaitFor(HasLink("online"))) << "an observer that comes later is told the state of the link";
    EXPECT_TRUE(late->WaitFor(HasRegister(77)));

    // Between two lives of an observer nothing is lost, and what was there before comes first.
    auto const interim = std::make_shared<Interim>();
    dispatcher.Replace(early, interim);
    for (std::uint16_t value = 78; value < 81; ++value) {
        controller.With([=](auto& model) { model.registers[4] = value; });
        EXPECT_TRUE(late->WaitFor(HasRegister(value)));
    }
    auto const next = std::make_shared<Witness>();
    dispatcher.Replace(interim, next);
    for (std::int64_t value = 77; value < 81; ++value) {
        EXPECT_TRUE(next->WaitFor(HasRegister(value))) << value;
    }

    server.Stop();
    EXPECT_TRUE(late->WaitFor(HasRegister(80, recording::RecordedQuality::Stale)));
    fleet.Remove("press");
    dispatcher.Remove(press);
    EXPECT_TRUE(dispatcher.Latest().Snapshot().empty());
}

} // namespace
} // namespace harvlink::gateway
