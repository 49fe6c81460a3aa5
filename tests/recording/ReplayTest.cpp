#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <map>
#include <thread>

#include <gtest/gtest.h>

#include "harvlink/Fleet.h"
#include "recording/fleet/FleetAdapter.h"
#include "recording/read/Recording.h"
#include "recording/write/Recorder.h"
#include "simulator/network/Server.h"
#include "simulator/replay/RecordingReplay.h"
#include "support/LoopbackAddress.h"
#include "support/ScratchFolder.h"

namespace harvlink::recording {
namespace {

using simulator::Server;
using simulator::VirtualController;
using std::chrono::milliseconds;

std::vector<FleetGroup> AllGroups() {
    FleetGroup group;
    group.period = milliseconds(10);
    group.items = {FleetItem::State(),
                   FleetItem::Job(),
                   FleetItem::Alarms(),
                   FleetItem::Software(),
                   FleetItem::Position(ControlGroupId::R1),
                   FleetItem::Position(ControlGroupId::R1, CoordinateType::BaseCoordinate),
                   FleetItem::Position(ControlGroupId::R1, CoordinateType::Pulse, 3),
                   FleetItem::Torque(ControlGroupId::R1),
                   FleetItem::PositionError(ControlGroupId::R1),
                   FleetItem::Variable(FleetItemKind::ByteVariable, 5),
                   FleetItem::Variable(FleetItemKind::RealVariable, 1),
                   FleetItem::Variable(FleetItemKind::StringVariable, 2),
                   FleetItem::Variable(FleetItemKind::RobotPositionVariable, 4),
                   FleetItem::Signal(10012),
                   FleetItem::SignalGroup(10030),
                   FleetItem::Register(3),
                   FleetItem::OperatingTime(TimeType::ControlPower)};
    return {group};
}

/// Starts a server on an address of its own, with what `prepare` does to its controller.
template <typename Prepare>
std::string Start(Server& server, VirtualController*& controller, Prepare const& prepare) {
    std::string const address = test::NextLoopbackAddress();
    controller = &server.Add(address);
    prepare(*controller);
    EXPECT_TRUE(server.Start()) << server.Error();
    return address;
}

/// Records a controller while `work` is done.
template <typename Work>
void RecordFleet(std::string const& address, std::filesystem::path const& path, Work const& work) {
    Recorder recorder(path);
    FleetAdapter adapter({[&](auto const& controller) { return recorder.AddController(controller); },
                          [&](auto const& reading) { return recorder.AddReading(reading); }});
    adapter.AddController("press1", address);
    Fleet fleet;
    ASSERT_EQ(fleet.Add("press1", {.address = address}, AllGroups()).StatusCode, 0);
    ASSERT_EQ(fleet.Start().StatusCode, 0);
    std::atomic<bool> isDone = false;
    std::thread worker([&] {
        work();
        isDone = true;
    });
    std::vector<FleetSample> samples(256);
    while (!isDone) {
        auto const count = fleet.Take(samples, milliseconds(20));
        for (std::size_t i = 0; i < count; ++i) {
            recorder.Put(adapter.Convert(samples[i]));
        }
    }
    worker.join();
    fleet.Stop();
    recorder.Close();
    ASSERT_EQ(recorder.Status().problem, "");
}

struct Step {
    Microseconds time = 0;
    RecordedValue value;
};

/// The values of each item one after the other, with their times.
std::map<std::string, std::vector<Step>> StepsOf(std::filesystem::path const& path) {
    std::map<std::string, std::vector<Step>> steps;
    Recording recording(path);
    recording.ForEachChange({}, false, [&](Change const& change) {
        auto const& reading = recording.Contents().readings[change.reading - 1];
        for (auto const& [place, value] : change.values) {
            auto& of = steps[reading.name + "." + reading.items[static_cast<std::size_t>(place)].field];
            of.push_back({change.moment.monotonic, value});
        }
        return true;
    });
    return steps;
}

void ChangeStepByStep(VirtualController& controller) {
    std::this_thread::sleep_for(milliseconds(300));
    for (int i = 1; i <= 8; ++i) {
        controller.With([i](simulator::ControllerModel& model) {
            model.variables.bytes[5] = static_cast<std::uint8_t>(i);
            model.variables.reals[1] = 0.1F * static_cast<float>(i);
            model.variables.strings[2] = "STEP" + std::to_string(i);
            model.variables.robotPositions[4].coordinateType = 16;
            model.variables.robotPositions[4].axes[0] = i * 1001;
            model.variables.robotPositions[4].figure = 5;
            model.registers[3] = static_cast<std::uint16_t>(i * 1000);
            model.signals.Write(10012, i % 2 == 1);
            model.SetHold(simulator::HoldSource::External, i % 3 == 0);
            if (i == 4) {
                model.RaiseAlarm(4107, 3, "OUT OF RANGE (ABSO DATA)");
            }
        });
        std::this_thread::sleep_for(milliseconds(120));
    }
}

TEST(ReplayTest, ARecordingOfTheReplayEqualsTheFirst) {
    test::ScratchFolder const folder;
    auto const first = folder.Path() / "first.harvlink";
    auto const second = folder.Path() / "second.harvlink";
    VirtualController* controller = nullptr;
    Server moving;
    RecordFleet(Start(moving, controller, [](auto&) {}), first, [&] { ChangeStepByStep(*controller); });
    Server replayed;
    auto const address = Start(replayed, controller, [&](VirtualController& replay) {
        replay.SetAnswerer(std::make_unique<simulator::RecordingReplay>(first, simulator::ReplayOptions{}));
    });
    RecordFleet(address, second, [] { std::this_thread::sleep_for(milliseconds(1700)); });

    auto const expected = StepsOf(first);
    auto const got = StepsOf(second);
    ASSERT_EQ(got.size(), expected.size());
    int late = 0;
    int steps = 0;
    auto const& byteSteps = expected.at("B005.");
    ASSERT_EQ(byteSteps.size(), 9);
    std::vector<Microseconds> offsets;
    for (std::size_t i = 1; i < byteSteps.size() && i < got.at("B005.").size(); ++i) {
        offsets.push_back(got.at("B005.")[i].time - byteSteps[i].time);
    }
    std::sort(offsets.begin(), offsets.end());
    Microseconds const offset = offsets.at(offsets.size() / 2);
    for (auto const& [name, values] : expected) {
        auto const& again = got.at(name);
        ASSERT_EQ(again.size(), values.size()) << name;
        for (std::size_t i = 0; i < values.size(); ++i) {
            EXPECT_EQ(again[i].value, values[i].value) << name << ' ' << i;
            late += i > 0 && std::abs(again[i].time - values[i].time - offset) > 20'000 ? 1 : 0;
            steps += i > 0 ? 1 : 0;
        }
    }
    // A busy machine may hold up a single read.
    EXPECT_LE(late, steps / 5) << "of " << steps;
}

} // namespace
} // namespace harvlink::recording
