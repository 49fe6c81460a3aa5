#include <array>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "CardCase.h"

namespace harvlink::cli::cards {
namespace {

Operation InMode(simulator::Mode mode, Operation operation) {
    return [mode, operation](Rig& rig) {
        rig.Set([&](ControllerModel& model) { model.SetMode(mode); });
        return operation(rig);
    };
}

Operation WithServo(bool on, std::function<void(ControllerModel&)> change, Operation operation) {
    return [on, change, operation](Rig& rig) {
        rig.Set([&](ControllerModel& model) {
            model.SetServo(on);
            change(model);
        });
        return operation(rig);
    };
}

void Nothing(ControllerModel& /*model*/) {}

Operation const StartJob = [](Rig& rig) { return rig->ControlCommands->StartJob(); };

Operation ReadTimes(ControlGroupId group, TimeType type) {
    return CALL(rig->Status->ReadOperatingTimes(group, type, Any<TimeData>(), ApplicationNumber::None));
}

Operation Convert(PositionData const& position, KinematicConversions conversion,
                  KinematicType type = KinematicType::KinematicFigure, ControlGroupId group = ControlGroupId::R1) {
    return [=, source = position](Rig& rig) mutable {
        return conversion >= KinematicConversions::CartesianPosToJointAngle
                   ? rig->Kinematics->ConvertPositionFromCartesian(group, source, conversion, type, {},
                                                                   Any<PositionData>())
                   : rig->Kinematics->ConvertPosition(group, source, conversion, Any<PositionData>());
    };
}

PositionData Pose(CoordinateType type, double x) {
    return {.coordinateType = type, .axes = {x, 0.0, 500.0, 180.0}};
}

TEST(Cards, SayWhatTheControllerRefuses) {
    using simulator::HoldSource;
    using simulator::Mode;
    using enum CoordinateType;
    using enum ControlGroupId;
    using enum KinematicConversions;
    Operation const servos = CALL(rig->ControlCommands->SetServos(SignalStatus::On));
    constexpr auto slot = TargetControlGroup::GroupOne;
    auto const alarm = [](ControllerModel& model) { model.RaiseAlarm(4107, 1, "Alarm"); };
    auto const hold = [](HoldSource source) {
        return [source](ControllerModel& model) { model.SetHold(source, true); };
    };
    std::array const cases = std::to_array<Case>({
        {"0x2010", "A job runs.", CALL(rig.Run("TIMER T=9.00"), rig->Job->SetActiveJob("A", 0))},
        {"0x2020", "hold key of the pendant", WithServo(true, hold(HoldSource::Pendant), StartJob)},
        {"0x2040", "PLC, HMI or safety circuit", WithServo(true, hold(HoldSource::External), StartJob)},
        {"0x2050", "harvlink hold off", WithServo(true, hold(HoldSource::Command), StartJob)},
        {"0x2060", "nothing moves before it is cleared", WithServo(true, alarm, StartJob)},
        {"0x2070", "Servo power is off", WithServo(false, Nothing, StartJob)},
        {"0x2080", "need remote mode", InMode(Mode::Teach, servos)},
        {"0x2100", "not in remote mode", InMode(Mode::Play, servos)},
        {"0x3350", "never taught", ReadPosition(R1, UserCoordinate, 1, 0)},
        {"0x4060", "No job is selected", WithServo(true, Nothing, StartJob)},
        {"0x4190", "Upper case letters, digits and '-' always do", Load("A/B.JBI", "//NAME A/B"), Load("A-1.JBI", "//NAME A-1")},
        {"0x4230", "instruction of an option", Load("A.JBI", JobWith("WELD"))},
        {"0x5130", "no NOP or END", Load("A.JBI", "/JOB\r\n//NAME A\r\n//INST\r\n")},
        {"0x5200", "the line that was selected: the job has become shorter",
         [](Rig& rig) {
             rig.Run("TIMER T=9.00");
             rig->ControlCommands->SetHold(SignalStatus::On);
             rig->Job->SetActiveJob("A", 2);
             rig->ControlCommands->SetHold(SignalStatus::Off);
             rig.Put("A.JBI", Job);
             return StartJob(rig);
         }},
        {"40961", "a task", CALL(rig->Job->GetExecutingJobInformation(TesselTaskNumber{8}, Any<JobData>()))},
        {"40961", "operating time", ReadTimes(R1, TimeType{220}), ReadTimes(S1, TimeType::MovingStation)},
        {"40961", "a signal", ReadBit(90010)},
        {"-59959039", "no such group", CALL(rig->ControlGroup->ReadTorqueData(R2, Any<TorqueData>()))},
        {"45063", "no such robot, station or application",
         CALL(rig->Status->ReadSystemInformation(SystemInfoId::Robot5, Any<SystemInfoData>()))},
        {"45067", "Pulse always", CALL(rig.Motion().SetCoord(slot, MasterTool, 0)),
         CALL(rig.Motion().SetCoord(slot, ToolCoordinate, 0))},
        {"45068", "", CALL(rig->Variables->basePositionVariable->Write({{.coordinateType = JointAngle}, 0})),
         CALL(rig->Variables->stationPositionVariable->Write({{.coordinateType = JointAngle}, 0}))},
        {"45069", "numbered 0 to 63", WritePosition(Pulse, 1, 64), WritePosition(Pulse, 1, 63)},
        {"51200", "the group does not exist", ReadTimes(R2, TimeType::ServoPowerRobot)},
        {"57996", "RS214",
         [](Rig& rig) {
             rig.Set([](ControllerModel& model) { model.parameters.Set(SystemParameterType::RS, 0, 214, 0); });
             rig->Files->LoadToControllerFromString("A.DAT", "1");
             return rig->Files->LoadToControllerFromString("A.DAT", "2");
         }},
        {"58034", "needs remote mode", InMode(Mode::Play, Load("A.JBI", Job)),
         InMode(Mode::Play, CALL(rig->Files->SaveFromControllerToString("TOOL.CND", Any<std::string>())))},
        {"58035", "no such file", CALL(rig->Files->DeleteJobFile("NONE"))},
        {"file:58014", "does not allow this file to be written",
         CALL(rig.Files().SendTheBuffer("ALL.PRM", Any<std::vector<FileBlock>>()))},
        {"0xFFFF", "no such register", CALL(rig->IO->ReadRegister(3000, Any<unsigned short>()))},
        {"io:65535", "not in remote mode", InMode(Mode::Play, WriteByte(27010))},
        {"motion:65535", "not in remote mode", InMode(Mode::Play, StartMotion)},
        {"motion:65534", "Servo power is off", StartMotion},
        {"motion:65533", "A hold is active", WithServo(true, hold(HoldSource::External), StartMotion)},
        {"motion:65532", "An alarm or error is active", WithServo(true, alarm, StartMotion)},
        {"motion:65529", "not in a mode", InMode(Mode::Teach, StartMotion)},
        {"motion:65528", "A job runs", CALL(rig.Run("TIMER T=9.00"), StartMotion(rig))},
        {"motion:65501", "1 to 63",
         CALL(rig.Motion().SetCoord(slot, UserCoordinate, 64)),
         CALL(rig.Motion().SetCoord(slot, UserCoordinate, 63))},
        {"motion:65446", "never taught",
         CALL(rig.Motion().SetCoord(slot, UserCoordinate, 63))},
        {"motion:65491", "0 to 63", CALL(rig.Motion().SetTool(slot, 64)),
         CALL(rig.Motion().SetTool(slot, 63))},
        {"motion:65489", "20 to 100",
         CALL(rig.Motion().SetAccelRatio(slot, 1999)),
         CALL(rig.Motion().SetAccelRatio(slot, 2000))},
        {"motion:65488", "20 to 100",
         CALL(rig.Motion().SetDecelRatio(slot, 10001)),
         CALL(rig.Motion().SetDecelRatio(slot, 10000))},
        {"job:20992", "no such line",
         CALL(rig.Run("TIMER T=0.01"), rig->ControlCommands->SetHold(SignalStatus::On),
              rig->Job->SetActiveJob("A", 9999))},
        {"job:16448", "upper and lower case are the same", CALL(rig->Job->SetActiveJob("B", 0)),
         CALL(rig.Put("A.JBI", Job), rig->Job->SetActiveJob("a", 0))},
        {"job:65535", "no such task",
         CALL(rig->Job->GetJobStack(TesselTaskNumber{8}, Any<std::vector<std::string>>()))},
        {"conversion:65535", "kinematic type", Convert(Pose(BaseCoordinate, 600), CartesianPosToPulse, KinematicType{9})},
        {"conversion:65534", "Only robots have Cartesian positions", Convert({}, PulseToCartesianPos, {}, S1)},
        {"conversion:65533", "no such group", Convert({}, PulseToJointAngle, {}, R2)},
        {"conversion:65531", "No posture of the arm reaches the position", Convert(Pose(BaseCoordinate, 9000), CartesianPosToJointAngle)},
        {"conversion:65530", "not a position", Convert(Pose(MasterTool, 600), CartesianPosToJointAngle)},
    });
    Check(cases);
}

} // namespace
} // namespace harvlink::cli::cards
