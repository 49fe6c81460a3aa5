#include "harvlink/Fleet.h"

#include <gtest/gtest.h>

#include "FleetRig.h"
#include "support/UnknownName.h"

// What a fleet promises as a whole, on virtual controllers.

namespace harvlink::test {
namespace {

using enum FleetEventKind;
using simulator::ControllerModel;
using simulator::Fault;

FleetGroup StateEach(std::chrono::nanoseconds period) {
    return {.period = period, .items = {FleetItem::State()}};
}

FleetItem Byte(std::uint32_t index) {
    return FleetItem::Variable(FleetItemKind::ByteVariable, index);
}

/// One reason each why a controller can't be added, and what the text says.
struct Refused {
    std::string says;
    std::function<void(std::string& name, FleetControllerOptions& options, FleetGroup& group)> spoil;
    std::int32_t code = static_cast<std::int32_t>(ErrorStatusCodes::InvalidFleet);
};

std::vector<Refused> Refusals() {
    using N = std::string&;
    using O = FleetControllerOptions&;
    using G = FleetGroup&;
    auto const item = [](FleetItem bad) { return [bad](N, O, G group) { group.items = {FleetItem::State(), bad}; }; };
    auto const old = [](FleetItem bad) {
        return [bad](N, O options, G group) {
            options.generation = ControllerVersion::VersionDN;
            group.items = {bad};
        };
    };
    return {
        {"name", [](N name, O, G) { name.clear(); }},
        {"name", [](N name, O, G) { name.assign(64, 'x'); }},
        {"the name is taken", [](N name, O, G) { name = "first"; }},
        {"its address is that of \"first\"", [](N, O options, G) { options.address = "127.9.9.1"; }},
        {"nor a host's name", [](N, O options, G) { options.address = "127.1"; }},
        {"could not be resolved", [](N, O options, G) { options.address = UnknownName(); }, 0x50012},
        {"timeout", [](N, O options, G) { options.timeout = 0; }},
        {"retries", [](N, O options, G) { options.retries = 1001; }},
        {"lanes", [](N, O options, G) { options.lanes = 5; }},
        {"gap", [](N, O options, G) { options.gap = -1us; }},
        {"limit", [](N, O options, G) { options.mostRequestsPerSecond = -1.0; }},
        {"group 0: its period", [](N, O, G group) { group.period = 999us; }},
        {"group 0: its period", [](N, O, G group) { group.period = 25h; }},
        {"group 0: it has no items", [](N, O, G group) { group.items.clear(); }},
        {"longest silence", [](N, O, G group) { group.longestSilence = -1ms; }},
        {"dead band takes", [](N, O, G group) { group.items = {{.kind = FleetItemKind::Register, .deadBand = 1.0}}; }},
        {"item \"state\": its dead band", item({.deadBand = 1.0})},
        {"item of unknown kind 20", item({.kind = static_cast<FleetItemKind>(20)})},
        {"its control group is unknown", item(FleetItem::Position(static_cast<ControlGroupId>(9)))},
        {"item \"torque \": its control group is unknown", item(FleetItem::Torque(static_cast<ControlGroupId>(45)))},
        {"pulse, base, robot or user", item(FleetItem::Position(ControlGroupId::R1, CoordinateType::JointAngle))},
        {"numbered 1 to 63", item(FleetItem::Position(ControlGroupId::R1, CoordinateType::UserCoordinate))},
        {"item \"state x 2\": its count", item({.count = 2})},
        {"its axis", item({.axis = 0})},
        {"item \"B2040 x 10\": variables are numbered",
         item(FleetItem::Variable(FleetItemKind::ByteVariable, 2040, 10))},
        {"item \"signal 18\": no signal", item(FleetItem::Signal(18))},
        {"multiple of 10", item(FleetItem::SignalGroup(11))},
        {"time counter", item(FleetItem::OperatingTime(TimeType::ServoPowerStation, ControlGroupId::R1))},
        {"motion slots", item(FleetItem::TargetProgress(4))},
        {"item \"progress 0\": this generation", old(FleetItem::TargetProgress())},
        {"does not have these signals", old(FleetItem::Signal(55120))},
        {"item \"position R1 robot\": this generation",
         old(FleetItem::Position(ControlGroupId::R1, CoordinateType::RobotCoordinate))},
        {"more than 65536 items", [](N, O, G group) { group.items.assign(2, FleetItem::Register(1, 65535)); }},
    };
}

TEST(Fleet, SaysBeforeTheStartWhatCanNotBeWatched) {
    for (Refused const& refused : Refusals()) {
        Fleet fleet;
        FleetControllerOptions const good{.address = "127.9.9.1", .timeout = 50, .retries = 0};
        ASSERT_EQ(fleet.Add("first", good, {StateEach(1s)}).StatusCode, 0);
        std::string name = "second";
        FleetControllerOptions options = good;
        options.address = "127.9.9.2";
        FleetGroup group = StateEach(1s);
        refused.spoil(name, options, group);
        StatusInfo const status = fleet.Add(name, options, {group});
        EXPECT_EQ(status.StatusCode, refused.code) << refused.says;
        EXPECT_NE(status.Message.find(refused.says), std::string::npos) << refused.says << " | " << status.Message;
        EXPECT_EQ(fleet.Plan().controllers.size(), 1U);
    }
    Fleet fleet;
    EXPECT_EQ(fleet.Change("none", {.address = "127.9.9.1"}, {StateEach(1s)}).StatusCode, 0x50014);
    EXPECT_EQ(fleet.Remove("none").StatusCode, 0x50014);
}

TEST(Fleet, PlansWhatItCosts) {
    Fleet fleet;
    FleetGroup const shared{.period = 100ms,
                            .items = {FleetItem::Signal(10010), FleetItem::State(), FleetItem::Signal(10012, 8),
                                      FleetItem::Position(ControlGroupId::R1, CoordinateType::Pulse, 0),
                                      FleetItem::Alarms(), FleetItem::Position(ControlGroupId::R1)}};
    ASSERT_EQ(fleet.Add("a", {.address = "127.9.9.1", .lanes = 2}, {shared, StateEach(1s)}).StatusCode, 0);
    ASSERT_EQ(fleet.Add("b", {.address = "127.9.9.2", .gap = 200ms}, {StateEach(100ms)}).StatusCode, 0);
    FleetPlan const plan = fleet.Plan();
    auto const& first = plan.controllers.at(0);
    EXPECT_EQ(first.groups.at(0).items, 13U);
    EXPECT_EQ(first.groups.at(0).exchangesPerRound, 8U); // two groups of signals, state, four of alarms, position
    EXPECT_NEAR(first.exchangesPerSecond, 81.0, 1e-6);
    EXPECT_NEAR(static_cast<double>(first.longestRoundTrip.count()), 2e9 / 81.0, 1.0);
    EXPECT_EQ(plan.controllers.at(1).longestRoundTrip.count(), 0);
    EXPECT_EQ(plan.descriptors, 7U);
}

/// No faster than they should be; how much slower is up to the machine, but it is the same for all.
TEST(Fleet, KeepsPeriods) {
    FleetRig rig(20);
    auto const start = std::chrono::steady_clock::now();
    ASSERT_EQ(rig.Watch({StateEach(20ms), {.period = 50ms, .items = {Byte(0), Byte(1)}}}).StatusCode, 0);
    ASSERT_TRUE(rig.Await([&](FleetSample const&) { return rig.Of(19).groups[0].rounds >= 50; }));
    std::array<std::uint64_t, 2> rounds{};
    for (std::size_t i = 0; i < 20; ++i) {
        auto const groups = rig.Of(i).groups;
        std::chrono::duration<double> const elapsed = std::chrono::steady_clock::now() - start;
        rounds = {groups[0].rounds, groups[1].rounds};
        EXPECT_GE(rounds[0], 40U);
        EXPECT_LE(static_cast<double>(rounds[0]), elapsed.count() / 0.02 + 2.0);
        EXPECT_GE(rounds[1], rounds[0] / 4);
        EXPECT_LE(static_cast<double>(rounds[1]), elapsed.count() / 0.05 + 2.0);
    }
}

/// Ten exchanges of 10 ms are too many for 70 ms. Each round begins with the last answer of the one before it.
TEST(Fleet, RunsAtTheRateThatIsPossible) {
    FleetRig rig(1, [](std::size_t) {
        ControllerOptions options;
        options.faults.Rate(Fault::Delay) = 1.0;
        options.faults.delay = 10ms;
        return options;
    });
    ASSERT_EQ(rig.Watch({{.period = 70ms, .items = {FleetItem::Variable(FleetItemKind::ByteVariable, 0, 10)}}}, 2000)
                  .StatusCode,
              0);
    std::chrono::system_clock::time_point last{};
    int rounds = 0;
    ASSERT_TRUE(rig.Await(
        [&](FleetSample const& sample) {
            if (sample.item.index == 0 && last.time_since_epoch().count() != 0) {
                EXPECT_LE(sample.requestTime - last, 1ms);
                ++rounds;
            }
            last = sample.answerTime;
            return rounds == 12;
        },
        20s));
    EXPECT_TRUE(rig.AwaitEvent(RanOver));
    auto const seen = rig.Of(0).groups[0];
    EXPECT_GE(seen.overruns, 1U);
    EXPECT_LE(seen.effectiveRate, 10.2);
}

TEST(Fleet, GivesTheControllerRest) {
    struct Rest {
        std::chrono::microseconds gap;
        double rate;
    };
    for (Rest const& rest : {Rest{20ms, 0.0}, Rest{0us, 50.0}}) {
        FleetRig rig(1);
        FleetControllerOptions options = rig.OptionsOf(0);
        options.gap = rest.gap;
        options.mostRequestsPerSecond = rest.rate;
        options.lanes = 3;
        ASSERT_EQ(rig.fleet.Add("c0", options, {StateEach(1ms), {.period = 5ms, .items = {Byte(0)}}}).StatusCode, 0);
        auto const start = std::chrono::steady_clock::now();
        ASSERT_EQ(rig.fleet.Start().StatusCode, 0);
        ASSERT_TRUE(rig.Await([&](FleetSample const&) { return rig.Of(0).exchanges >= 20; }));
        EXPECT_GE(std::chrono::steady_clock::now() - start, 19 * 20ms);
    }
}

/// Repeated requests are requests too.
TEST(Fleet, GivesASilentControllerRest) {
    FleetRig rig(1);
    rig.controllers[0]->WithFaults([](simulator::FaultInjector& faults) { faults.Arm(Fault::Drop, 1'000'000); });
    FleetControllerOptions options = rig.OptionsOf(0, 10);
    options.gap = 150ms;
    ASSERT_EQ(rig.fleet.Add("c0", options, {StateEach(1s)}).StatusCode, 0);
    auto const start = std::chrono::steady_clock::now();
    ASSERT_EQ(rig.fleet.Start().StatusCode, 0);
    ASSERT_TRUE(rig.AwaitState(0, FleetState::Silent));
    EXPECT_EQ(rig.Of(0).repeatedRequests, 2U);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 2 * 150ms);
}

TEST(Fleet, TellsEdgesOnce) {
    FleetRig rig(1, [](std::size_t) {
        ControllerOptions options;
        options.timeScale = 0.0;
        return options;
    });
    ASSERT_EQ(rig.Watch({{.period = 5ms, .items = {FleetItem::State(), FleetItem::Alarms()}}}).StatusCode, 0);
    ASSERT_TRUE(rig.AwaitState(0, FleetState::Online));
    auto const settle = [&] {
        auto const rounds = rig.Of(0).groups[0].rounds;
        return rig.Await([&](FleetSample const&) { return rig.Of(0).groups[0].rounds > rounds + 2; });
    };
    struct Edge {
        std::function<void(ControllerModel&)> make;
        std::vector<FleetEventKind> kinds;
    };
    Edge const edges[] = {
        {[](ControllerModel& model) { model.SetServo(true); }, {ServoOn}},
        {[](ControllerModel& model) { model.SetMode(simulator::Mode::Play); }, {ControlModeChanged}},
        {[](ControllerModel& model) { model.state.cycle = CycleMode::Step; }, {CycleModeChanged}},
        {[](ControllerModel& model) { model.alarms.Raise(4107, 1, "SHOCK", 0); }, {AlarmRaised, AlarmRaised}},
        {[](ControllerModel& model) { model.alarms.Reset(); }, {AlarmCleared, AlarmCleared}},
    };
    for (Edge const& edge : edges) {
        ASSERT_TRUE(settle());
        rig.controllers[0]->With(edge.make);
        ASSERT_TRUE(settle());
        std::vector<FleetEventKind> kinds;
        while (rig.fleet.TakeEvents(std::span(&rig.lastEvent, 1), 0ms) == 1) {
            if (rig.lastEvent.kind != RanOver) { // of a busy machine
                kinds.push_back(rig.lastEvent.kind);
            }
            if (rig.lastEvent.after == 4107) {
                EXPECT_EQ(rig.lastEvent.text, "SHOCK");
            }
        }
        EXPECT_EQ(kinds, edge.kinds);
    }
}

TEST(Fleet, ReportsChangesBeyondTheDeadBand) {
    FleetRig rig(1);
    ASSERT_EQ(rig.Watch({{.period = 2ms,
                          .items = {{.kind = FleetItemKind::ByteVariable, .index = 1, .deadBand = 5.0}, Byte(2)},
                          .onChange = true},
                         {.period = 2ms, .items = {Byte(3)}, .onChange = true, .longestSilence = 50ms}})
                  .StatusCode,
              0);
    ASSERT_TRUE(rig.Await([](FleetSample const& sample) { return sample.item.index == 3; }));
    struct Step {
        std::size_t index;
        std::uint8_t value;
        bool isReported;
    };
    for (Step const& step :
         {Step{1, 5, false}, {1, 6, true}, {2, 1, true}, {1, 11, false}, {2, 1, false}, {1, 0, true}}) {
        auto const rounds = rig.Of(0).groups[0].rounds;
        rig.controllers[0]->With([&](ControllerModel& model) { model.variables.bytes[step.index] = step.value; });
        std::vector<std::int64_t> reported;
        std::size_t heartbeats = 0;
        ASSERT_TRUE(rig.Await([&](FleetSample const& sample) {
            heartbeats += sample.item.index == 3 ? 1 : 0;
            if (sample.item.index == step.index) {
                reported.push_back(std::get<std::int64_t>(sample.value));
            }
            return rig.Of(0).groups[0].rounds > rounds + 30 && heartbeats >= 2;
        }));
        EXPECT_EQ(!reported.empty() && reported.back() == step.value, step.isReported) << int{step.value};
    }
}

TEST(Fleet, ComesBackToAControllerThatWasReplaced) {
    FleetRig rig(2);
    ASSERT_EQ(rig.Watch({{.period = 10ms, .items = {FleetItem::State(), Byte(5)}}}, 50).StatusCode, 0);
    ASSERT_TRUE(rig.AwaitState(0, FleetState::Online));
    ASSERT_TRUE(
        rig.Await([](FleetSample const& sample) { return sample.controller == "c0" && sample.item.index == 5; }));
    std::string const address = rig.controllers[0]->Address();
    rig.controllers[0]->WithFaults([](simulator::FaultInjector& faults) { faults.Arm(Fault::Drop, 1'000'000); });
    ASSERT_TRUE(rig.AwaitState(0, FleetState::Silent));
    EXPECT_EQ(rig.lastEvent.code, static_cast<std::int32_t>(ErrorStatusCodes::ResponseTimeout));
    for (FleetSample const& sample : rig.fleet.Latest("c0")) {
        EXPECT_EQ(sample.quality, FleetQuality::Stale);
        EXPECT_FALSE(std::holds_alternative<std::monostate>(sample.value));
    }
    EXPECT_EQ(rig.Of(1).state, FleetState::Online);
    rig.server->Stop();
    simulator::Server other;
    ControllerOptions options;
    options.generation = ControllerVersion::VersionDN;
    other.Add(address, options);
    ASSERT_TRUE(other.Start()) << other.Error();
    ASSERT_TRUE(rig.AwaitEvent(SoftwareChanged));
    EXPECT_EQ(rig.lastEvent.text.substr(0, 2), "DN");
    ASSERT_TRUE(rig.Await(
        [](FleetSample const& sample) { return sample.controller == "c0" && sample.quality == FleetQuality::Good; }));
    EXPECT_EQ(rig.Of(0).startUps, 2U);
}

TEST(Fleet, TellsThatNobodyListens) {
    Fleet fleet;
    ASSERT_EQ(fleet.Add("gone", {.address = NextLoopbackAddress()}, {StateEach(1s)}).StatusCode, 0);
    ASSERT_EQ(fleet.Start().StatusCode, 0);
    FleetEvent event;
    ASSERT_EQ(fleet.TakeEvents(std::span(&event, 1), 5s), 1U);
    EXPECT_EQ(event.after, static_cast<int>(FleetState::Refused));
    EXPECT_EQ(event.code, static_cast<int>(ErrorStatusCodes::ControllerNotListening));
}

TEST(Fleet, AsksNothingThatTheGenerationDoesNotHave) {
    FleetRig rig(1, [](std::size_t) {
        ControllerOptions options;
        options.generation = ControllerVersion::VersionDN;
        return options;
    });
    ASSERT_EQ(rig.Watch({{.period = 5ms, .items = {FleetItem::TargetProgress(), FleetItem::State()}}}).StatusCode, 0);
    ASSERT_TRUE(rig.AwaitEvent(ItemRefused));
    EXPECT_EQ(rig.lastEvent.text, "progress 0");
    EXPECT_EQ(rig.lastEvent.code, static_cast<int>(ErrorStatusCodes::UnsupportedOnThisController));
    ASSERT_TRUE(rig.Await([](FleetSample const& sample) { return sample.quality == FleetQuality::Good; }));
    EXPECT_EQ(rig.fleet.Latest().front().quality, FleetQuality::Refused);
    EXPECT_EQ(rig.controllers[0]->Traffic().refused, 0U);
}

TEST(Fleet, ChangesWhileItRuns) {
    FleetRig rig(3);
    ASSERT_EQ(rig.Watch({StateEach(5ms)}).StatusCode, 0);
    auto const awaitItem = [&](FleetItemKind kind, std::string const& name) {
        return rig.Await([&](FleetSample const& sample) {
            return sample.item.kind == kind && sample.controller == name && sample.quality == FleetQuality::Good;
        });
    };
    ASSERT_TRUE(awaitItem(FleetItemKind::State, "c2"));
    ASSERT_EQ(rig.fleet.Change("c1", rig.OptionsOf(1), {{.period = 5ms, .items = {Byte(1)}}}).StatusCode, 0);
    ASSERT_TRUE(awaitItem(FleetItemKind::ByteVariable, "c1"));
    ASSERT_EQ(rig.fleet.Remove("c0").StatusCode, 0);
    EXPECT_TRUE(rig.fleet.Latest("c0").empty());
    ASSERT_EQ(rig.fleet.Add("again", rig.OptionsOf(0), {StateEach(5ms)}).StatusCode, 0);
    ASSERT_TRUE(awaitItem(FleetItemKind::State, "again"));
    rig.fleet.Stop();
    auto const traffic = rig.controllers[2]->Traffic().requests;
    ASSERT_EQ(rig.fleet.Start().StatusCode, 0);
    ASSERT_TRUE(rig.Await([&](FleetSample const&) { return rig.controllers[2]->Traffic().requests > traffic + 10; }));
}

TEST(Fleet, DropsTheOldestAndCountsThem) {
    Fleet fleet({.queueCapacity = 64, .eventCapacity = 1});
    FleetRig const rig(1);
    ASSERT_EQ(fleet.Add("c0", rig.OptionsOf(0), {{.period = 2ms, .items = {Byte(0), FleetItem::Alarms()}}}).StatusCode,
              0);
    ASSERT_EQ(fleet.Start().StatusCode, 0);
    auto const end = std::chrono::steady_clock::now() + 10s;
    while (fleet.Statistics().samples < 500 && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(5ms);
    }
    fleet.Stop();
    std::vector<FleetSample> samples(1000);
    std::size_t const taken = fleet.Take(samples, 0ms);
    EXPECT_GT(taken, 20U);
    EXPECT_LE(taken, 64U);
    auto const seen = fleet.Statistics();
    EXPECT_EQ(taken + seen.droppedSamples, seen.samples);
}

} // namespace
} // namespace harvlink::test
