#include <algorithm>
#include <map>
#include <random>

#include <gtest/gtest.h>

#include "fleet/Backoff.h"
#include "fleet/ControllerRecord.h"
#include "fleet/DueHeap.h"
#include "fleet/RoundSchedule.h"

// When a fleet does what, without a clock.

namespace harvlink::test {
namespace {

using namespace std::chrono_literals;

/// Rounds of a group that take so long each, over ten seconds.
struct Pace {
    std::int64_t period;
    std::int64_t takes;
    std::uint64_t rounds;
    std::uint64_t overruns;
};

TEST(FleetSchedule, RunsOnTheGridOrAtTheRateThatIsPossible) {
    constexpr std::int64_t start = 1'000'000;
    constexpr std::int64_t end = start + 10'000;
    for (Pace const& pace : {Pace{100, 30, 101, 0}, Pace{100, 99, 101, 0}, Pace{100, 130, 77, 76},
                             Pace{70, 100, 100, 99}, Pace{1, 1000, 10, 9}}) {
        fleet::Group group;
        group.period = pace.period;
        fleet::RoundSchedule schedule(group);
        schedule.Start(start, pace.period / 2);
        std::int64_t now = start;
        while (now < end) {
            schedule.Begin(now);
            now += pace.takes;
            (void)schedule.Finish(now);
            now = std::max(now, schedule.Due());
        }
        EXPECT_NEAR(static_cast<double>(group.rounds.Get()), static_cast<double>(pace.rounds), 1.0) << pace.takes;
        EXPECT_NEAR(static_cast<double>(group.overruns.Get()), static_cast<double>(pace.overruns), 1.0) << pace.takes;
        EXPECT_EQ((schedule.Due() - start - pace.period / 2) % pace.period, 0) << "it has drifted";
    }
}

TEST(FleetSchedule, MakesUpForNoPause) {
    fleet::Group group;
    group.period = 100;
    fleet::RoundSchedule schedule(group);
    schedule.Start(1000, 100);
    schedule.Begin(1000);
    schedule.Excuse(10'000);
    EXPECT_FALSE(schedule.Finish(11'020)) << "its own pause is not an overrun";
    schedule.Begin(11'020);
    EXPECT_FALSE(schedule.Finish(11'030));
    EXPECT_EQ(schedule.Due(), 11'100);
    EXPECT_EQ(group.overruns.Get(), 0U);
}

/// Against a map, which is slower and plain.
TEST(FleetSchedule, FindsWhatIsDueNext) {
    std::minstd_rand random(1);
    fleet::DueHeap heap;
    std::map<std::uint32_t, std::int64_t> times;
    for (int step = 0; step < 20'000; ++step) {
        auto const slot = static_cast<std::uint32_t>(random() % 50);
        if (random() % 10 == 0 && times.erase(slot) != 0) {
            heap.Remove(slot);
        } else {
            times[slot] = static_cast<std::int64_t>(random() % 1000);
            heap.Set(slot, times[slot]);
        }
        auto const least = std::ranges::min_element(times, {}, [](auto const& entry) { return entry.second; });
        std::int64_t const next = heap.NextTime();
        ASSERT_EQ(next, least == times.end() ? fleet::DueHeap::never : least->second);
        ASSERT_TRUE(times.empty() || times.at(heap.NextSlot()) == next);
    }
}

TEST(FleetSchedule, AsksTheSilentEverMoreSeldom) {
    for (std::uint32_t seed = 0; seed < 100; ++seed) {
        fleet::Backoff backoff(seed);
        std::chrono::nanoseconds before{0};
        for (int i = 0; i < 20; ++i) {
            std::chrono::nanoseconds const pause(backoff.Next());
            EXPECT_GE(pause, i < 5 ? std::max<std::chrono::nanoseconds>(before, 500ms) : 10s);
            EXPECT_LE(pause, 30s);
            before = pause;
        }
    }
}

TEST(FleetSchedule, IsPatientWherePeriodsAllowIt) {
    struct Case {
        FleetControllerOptions options;
        std::chrono::nanoseconds period;
        std::uint32_t exchanges;
        std::chrono::nanoseconds patience;
    };
    for (Case const& one : {Case{{}, 1s, 20, 1562us}, Case{{.address = "", .lanes = 4}, 1s, 20, 6250us},
                            Case{{}, 1ms, 1, 31us}, Case{{.address = "", .gap = 500ms}, 1ms, 1, 15625us},
                            Case{{.address = "", .mostRequestsPerSecond = 10.0}, 1s, 20, 3125us}}) {
        fleet::ControllerRecord const record(
            1, "a", one.options, {},
            {{.period = one.period, .items = {FleetItem::Variable(FleetItemKind::ByteVariable, 0, one.exchanges)}}});
        EXPECT_NEAR(static_cast<double>(record.Patience()), static_cast<double>(one.patience.count()), 1000.0);
    }
}

} // namespace
} // namespace harvlink::test
