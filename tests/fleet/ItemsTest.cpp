#include <sstream>

#include <gtest/gtest.h>

#include "FleetRig.h"
#include "harvlink/harvlink.h"

// Every kind of item gives what the interface of a connection reads from the same controller.

namespace harvlink::test {
namespace {

using enum FleetItemKind;

std::string TextOf(FleetValue const& value) {
    std::ostringstream out;
    std::visit(
        [&](auto const& one) {
            using Value = std::remove_cvref_t<decltype(one)>;
            if constexpr (std::is_same_v<Value, std::monostate>) {
                out << "none";
            } else {
                out << one;
            }
        },
        value);
    return out.str();
}

struct Case {
    FleetItem item;
    std::function<StatusInfo(QuorvanController&, FleetValue&)> read; ///< by the interface
};

template <typename Record>
auto ReadVariable(VariableInterface<Record>* VariablesInterface::*kind, unsigned short index) {
    return [=](QuorvanController& robot, FleetValue& value) {
        Record record;
        StatusInfo status = (robot.Variables->*kind)->Read(index, record);
        if constexpr (requires { record.positionData; }) {
            value = record.positionData;
        } else if constexpr (std::is_same_v<decltype(record.value), std::string>) {
            value = record.value;
        } else if constexpr (std::is_floating_point_v<decltype(record.value)>) {
            value = double{record.value};
        } else {
            value = std::int64_t{record.value};
        }
        return status;
    };
}

auto ReadPosition(CoordinateType type, int axis = -1) {
    return [=](QuorvanController& robot, FleetValue& value) {
        PositionData position;
        StatusInfo status = robot.ControlGroup->ReadPositionData(ControlGroupId::R1, type, 0, 0, position);
        value = position;
        if (axis >= 0) {
            value = position.axes.at(static_cast<std::size_t>(axis));
        }
        return status;
    };
}

template <typename Value, typename Read>
auto ReadRecord(Read const& read) {
    return [=](QuorvanController& robot, FleetValue& value) {
        Value record{};
        StatusInfo status = read(robot, record);
        if constexpr (std::is_integral_v<Value> && !std::is_same_v<Value, bool>) {
            value = std::int64_t{record};
        } else {
            value = record;
        }
        return status;
    };
}

std::vector<Case> Cases() {
    using V = VariablesInterface;
    return {
        {FleetItem::State(),
         ReadRecord<ControllerStateData>([](auto& robot, auto& value) { return robot.Status->ReadState(value); })},
        {FleetItem::Job(), ReadRecord<JobData>([](auto& robot, auto& value) {
             return robot.Job->GetExecutingJobInformation(TesselTaskNumber::Master, value);
         })},
        {FleetItem::Alarms(),
         ReadRecord<ActiveAlarms>([](auto& robot, auto& value) { return robot.Faults->GetActiveAlarms(value); })},
        {FleetItem::Position(ControlGroupId::R1), ReadPosition(CoordinateType::Pulse)},
        {FleetItem::Position(ControlGroupId::R1, CoordinateType::BaseCoordinate),
         ReadPosition(CoordinateType::BaseCoordinate)},
        {FleetItem::Position(ControlGroupId::R1, CoordinateType::BaseCoordinate, 2),
         ReadPosition(CoordinateType::BaseCoordinate, 2)},
        {FleetItem::Torque(ControlGroupId::R1), ReadRecord<TorqueData>([](auto& robot, auto& value) {
             return robot.ControlGroup->ReadTorqueData(ControlGroupId::R1, value);
         })},
        {FleetItem::PositionError(ControlGroupId::R1), ReadRecord<PositionErrorData>([](auto& robot, auto& value) {
             return robot.ControlGroup->ReadPositionError(ControlGroupId::R1, value);
         })},
        {FleetItem::Variable(ByteVariable, 5), ReadVariable(&V::byteVariable, 5)},
        {FleetItem::Variable(IntegerVariable, 5), ReadVariable(&V::integerVariable, 5)},
        {FleetItem::Variable(DoubleIntVariable, 5), ReadVariable(&V::doubleIntVariable, 5)},
        {FleetItem::Variable(RealVariable, 5), ReadVariable(&V::realVariable, 5)},
        {FleetItem::Variable(StringVariable, 5), ReadVariable(&V::stringVariable, 5)},
        {FleetItem::Variable(RobotPositionVariable, 5), ReadVariable(&V::robotPositionVariable, 5)},
        {FleetItem::Variable(BasePositionVariable, 5), ReadVariable(&V::basePositionVariable, 5)},
        {FleetItem::Variable(StationPositionVariable, 5), ReadVariable(&V::stationPositionVariable, 5)},
        {FleetItem::Variable(ByteVariable, 2000), ReadVariable(&V::byteVariable, 2000)}, // refused
        {FleetItem::Signal(10013),
         ReadRecord<bool>([](auto& robot, auto& value) { return robot.IO->ReadBit(10013, value); })},
        {FleetItem::SignalGroup(10010),
         ReadRecord<unsigned char>([](auto& robot, auto& value) { return robot.IO->ReadByte(10010, value); })},
        {FleetItem::Register(3),
         ReadRecord<unsigned short>([](auto& robot, auto& value) { return robot.IO->ReadRegister(3, value); })},
        {FleetItem::OperatingTime(TimeType::ControlPower), ReadRecord<TimeData>([](auto& robot, auto& value) {
             return robot.Status->ReadOperatingTimes(ControlGroupId::R1, TimeType::ControlPower, value,
                                                     ApplicationNumber::None);
         })},
        {FleetItem::Software(), ReadRecord<SystemInfoData>([](auto& robot, auto& value) {
             return robot.Status->ReadSystemInformation(SystemInfoId::Robot1, value);
         })},
        {FleetItem::Torque(ControlGroupId::S7), ReadRecord<TorqueData>([](auto& robot, auto& value) {
             return robot.ControlGroup->ReadTorqueData(ControlGroupId::S7, value);
         })},
    };
}

void Fill(simulator::ControllerModel& model) {
    model.variables.bytes[5] = 200;
    model.variables.integers[5] = -7;
    model.variables.doubleInts[5] = -100'000;
    model.variables.reals[5] = 2.5F;
    model.variables.strings[5] = "READY";
    model.signals.Write(10013, true);
    model.registers[3] = 4711;
    model.alarms.Raise(4107, 3, "SHOCK", 0);
}

class Items : public testing::TestWithParam<std::pair<ControllerVersion, int>> {};

TEST_P(Items, GiveWhatTheInterfacesRead) {
    FleetRig rig(1, [](std::size_t) {
        ControllerOptions options;
        options.generation = GetParam().first;
        options.rs022 = GetParam().second;
        options.timeScale = 0.0;
        return options;
    });
    rig.controllers[0]->With(Fill);
    std::vector<FleetItem> items;
    for (Case const& one : Cases()) {
        items.push_back(one.item);
    }
    ASSERT_EQ(rig.Watch({{.period = 20ms, .items = items}}).StatusCode, 0);
    ASSERT_TRUE(rig.Await([&](FleetSample const&) { return rig.Of(0).groups[0].rounds >= 2; }));
    auto const latest = rig.fleet.Latest("c0");
    ASSERT_EQ(latest.size(), items.size());

    StatusInfo status;
    auto const robot = Connect({.address = rig.controllers[0]->Address()}, status);
    ASSERT_TRUE(robot) << status;
    for (Case const& one : Cases()) {
        std::ostringstream name;
        name << one.item;
        auto const sample = std::ranges::find_if(latest, [&](FleetSample const& each) {
            std::ostringstream other;
            other << each.item;
            return other.str() == name.str();
        });
        ASSERT_NE(sample, latest.end()) << name.str();
        FleetValue expected;
        StatusInfo const read = one.read(*robot, expected);
        EXPECT_EQ(sample->code, read.StatusCode) << name.str();
        EXPECT_EQ(sample->quality, read.StatusCode == 0 ? FleetQuality::Good : FleetQuality::Refused) << name.str();
        EXPECT_EQ(TextOf(sample->value), read.StatusCode == 0 ? TextOf(expected) : "none") << name.str();
        EXPECT_GE(sample->answerTime, sample->requestTime);
    }
}

INSTANTIATE_TEST_SUITE_P(Generations, Items,
                         testing::Values(std::pair{ControllerVersion::VersionYA, 1},
                                         std::pair{ControllerVersion::VersionYA, 0},
                                         std::pair{ControllerVersion::VersionDN, 0},
                                         std::pair{ControllerVersion::VersionDN, 1}));

} // namespace
} // namespace harvlink::test
