#include <array>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "ToolTest.h"
#include "files/FileHandler.h"
#include "harvlink/harvlink.h"
#include "kinematics/Kinematics.h"
#include "motion/MotionManager.h"
#include "status/MainStatusTable.h"
#include "support/ScratchFolder.h"
#include "support/UnknownName.h"
#include "words/cards/Explain.h"

// Compares the cards with the code that raises the status. Each statement has an operation that is refused with the code of
// the card and, if it names a limit, an operation inside the limit that is accepted.

namespace harvlink::cli {
namespace {

using simulator::ControllerModel;
using enum ControllerVersion;

constexpr char const* Job = "/JOB\r\n//NAME A\r\n//POS\r\n///NPOS 0,0,0,0,0,0\r\n//INST\r\nNOP\r\nEND\r\n";

std::string JobWith(std::string const& instruction) {
    std::string const text(Job);
    return text.substr(0, text.find("END")) + instruction + "\r\nEND\r\n";
}

/// A controller whose fifth group has no motion slot, and a connection to it.
class Rig {
public:
    explicit Rig(ControllerVersion generation) {
        simulator::ControllerOptions options{.generation = generation};
        using enum ControlGroupId;
        options.groups = {{R1, 6}, {B1, 1}, {S1, 1}, {S2, 1}, {S3, 1}};
        StatusInfo status;
        for (int attempt = 0; attempt < 10 && !robot_; ++attempt) {
            server_ = std::make_unique<simulator::Server>();
            address_ = test::NextLoopbackAddress();
            controller_ = &server_->Add(address_, options);
            if (server_->Start()) {
                robot_ = Connect(address_, status, 2000, 0, false);
            }
        }
        if (!robot_) {
            throw std::runtime_error(status.Message);
        }
    }

    QuorvanController* operator->() { return robot_.get(); }
    std::string const& Address() const { return address_; }
    MotionManager& Motion() { return dynamic_cast<MotionManager&>(*robot_->MotionManager); }
    FileHandler& Files() { return dynamic_cast<FileHandler&>(*robot_->Files); }
    harvlink::Kinematics& Conversion() { return dynamic_cast<harvlink::Kinematics&>(*robot_->Kinematics); }

    template <typename Function>
    void Set(Function const& function) {
        controller_->With([&](ControllerModel& model) { function(model); });
    }

    void Put(std::string_view name, std::string_view content) {
        controller_->WithParts([&](simulator::ControllerParts& parts) { parts.files.Put(name, content); });
    }

    /// Loads a job of these instructions and starts it, with servo power.
    StatusInfo Run(std::string const& instructions) {
        Put("A.JBI", JobWith(instructions));
        Set([](ControllerModel& model) { model.SetServo(true); });
        robot_->Job->SetActiveJob("A", 0);
        return robot_->ControlCommands->StartJob();
    }

private:
    std::string address_;
    std::unique_ptr<simulator::Server> server_;
    simulator::VirtualController* controller_ = nullptr;
    Connection robot_;
};

using Operation = std::function<StatusInfo(Rig&)>;

/// A call as an operation.
#define CALL(...) [=]([[maybe_unused]] Rig& rig) -> StatusInfo { return __VA_ARGS__; }

/// An output that nobody looks at, or an input whose value does not matter.
template <typename Value>
Value& Any() {
    static Value value;
    return value = {};
}

struct Case {
    char const* card; ///< in a form that `harvlink explain` accepts
    char const* says; ///< part of its cause or check
    Operation refused;
    Operation accepted = nullptr; ///< inside the limit
    ControllerVersion generation = VersionYA;
};

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
Operation const StartMotion = [](Rig& rig) { return rig->MotionManager->MotionStart(); };

Operation Load(std::string name, std::string text) {
    return CALL(rig->Files->LoadToControllerFromString(name, text));
}

/// A job whose file name has this length, including its extension.
Operation LoadNameOf(std::size_t length) {
    std::string const name = std::string(length - 4, 'A');
    return Load(name + ".JBI", "/JOB\r\n//NAME " + name + "\r\n//POS\r\n//INST\r\nNOP\r\nEND\r\n");
}

Operation LoadPath(std::string const& name, std::string const& text) {
    return [name, text](Rig& rig) {
        test::ScratchFolder const folder;
        test::WriteFile(folder.Path() / name, text);
        return rig->Files->LoadToControllerFromPath((folder.Path() / name).string());
    };
}

Operation ReadPosition(ControlGroupId group, CoordinateType type, unsigned char user, unsigned char tool) {
    return CALL(rig->ControlGroup->ReadPositionData(group, type, user, tool, Any<PositionData>()));
}

Operation WritePosition(CoordinateType type, int user, int tool) {
    RobotPositionVariableData const variable{{.coordinateType = type, .toolNumber = tool, .userCoordinateNumber = user},
                                             0};
    return CALL(rig->Variables->robotPositionVariable->Write(variable));
}

Operation AddPoint(harvlink::Motion motion, std::optional<harvlink::Motion> second = std::nullopt) {
    return CALL(rig->MotionManager->AddPointToTrajectory(motion, second));
}

harvlink::Motion Point(ControlGroupId group, double speed, MoveInterpolationType type = MoveInterpolationType::Joint) {
    return {.controlGroup = group, .speed = speed, .moveType = type};
}

harvlink::Motion PointOfRatios(double acceleration, double deceleration) {
    harvlink::Motion motion = Point(ControlGroupId::R1, 10.0);
    motion.accelerationRatio = acceleration;
    motion.decelerationRatio = deceleration;
    return motion;
}

harvlink::Motion PointIn(CoordinateType type) {
    harvlink::Motion motion = Point(ControlGroupId::R1, 10.0);
    motion.position.coordinateType = type;
    return motion;
}

Operation ReadBit(unsigned address) {
    return CALL(rig->IO->ReadBit(address, Any<bool>()));
}

Operation WriteByte(unsigned address) {
    return CALL(rig->IO->WriteByte(address, Any<unsigned char>()));
}

Operation ReadTimes(ControlGroupId group, TimeType type) {
    return CALL(rig->Status->ReadOperatingTimes(group, type, Any<TimeData>(), ApplicationNumber::None));
}

Operation ReadParameter(SystemParameterType type, int number, std::optional<int> group = std::nullopt) {
    return CALL(group ? rig->Status->ReadSystemParam(type, number, *group, Any<int>())
                      : rig->Status->ReadSystemParam(type, number, Any<int>()));
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

Operation CheckKinematics(int parameter, bool hasAngles) {
    return [=](Rig& rig) {
        rig.Set([&](ControllerModel& model) { model.parameters.Set(SystemParameterType::S2C, 0, 430, parameter); });
        return rig.Conversion().CheckInputCartPosParams(KinematicType::KinematicFromSystem, hasAngles);
    };
}

PositionData Pose(CoordinateType type, double x) {
    return {.coordinateType = type, .axes = {x, 0.0, 500.0, 180.0}};
}

void Check(std::span<Case const> cases) {
    for (Case const& each : cases) {
        SCOPED_TRACE(each.card);
        Explanation const card = Explain(each.card).front();
        std::string const text = fmt::format("{} {}", card.advice.cause, card.advice.check);
        EXPECT_NE(text.find(each.says), std::string::npos) << text;
        Rig rig(each.generation);
        StatusInfo const status = each.refused(rig);
        EXPECT_EQ(status.StatusCode, card.code) << status;
        if (each.accepted != nullptr) {
            Rig other(each.generation);
            StatusInfo const beside = each.accepted(other);
            EXPECT_NE(beside.StatusCode, card.code) << beside;
        }
    }
}

/// Codes that no operation of a connection returns. The tool or nothing raises those of the first row; connecting raises
/// those of the second; those of the third depend on what the network and this computer do to a strict connection.
constexpr std::array NotOfAnOperation{0x10000, 0x10001, 0x10002, 0x20000, 0x20004, 0x20005, 0x20006, 0x20010, //
                                      0x10003, 0x10007, //
                                      0x50003, 0x50004, 0x50005, 0x50006, 0x50007, 0x50008, 0x50009, 0x50010};

/// Looks at an address, strictly.
Operation Observe(std::string const& address) {
    return [=](Rig&) {
        StatusInfo status;
        static_cast<void>(Connect(ConnectOptions{.address = address}, status));
        return status;
    };
}

TEST(Cards, SayWhatTheLibraryRefuses) {
    using enum CoordinateType;
    using enum ControlGroupId;
    auto const readByteVariable = [](unsigned short index) {
        return CALL(rig->Variables->byteVariable->Read(index, Any<ByteVariableData>()));
    };
    std::array const cases = std::to_array<Case>({
        {"0x10004", "below 10", ReadBit(9), ReadBit(10)},
        {"0x10004", "ends in 8 or 9", ReadBit(18), ReadBit(17)},
        {"0x20001", ".JBI, .DAT, .CND, .PRM, .SYS, .LST, .LOG.", Load("A.TXT", "")},
        {"0x20002", "exists already",
         [](Rig& rig) {
             test::ScratchFolder const folder;
             test::WriteFile("A.CND", "");
             return rig->Files->SaveFromControllerToFile("TOOL.CND", "A.CND", false);
         }},
        {"0x20003", "no such file on this computer",
         CALL(rig->Files->LoadToControllerFromPath("/no/such/A.DAT"))},
        {"0x20007", "longer than 32 characters, its extension included", LoadNameOf(33), LoadNameOf(32)},
        {"0x20007", "longer than 32 characters, its extension included",
         CALL(rig->Job->SetActiveJob(std::string(29, 'A') + ".JBI", 0)), CALL(rig->Job->SetActiveJob("", 0))},
        {"0x20009", "no such group in this generation",
         CALL(rig->IO->ReadByte(IOType::GeneralOutput, 513, Any<unsigned char>())),
         CALL(rig->IO->ReadByte(IOType::GeneralOutput, 512, Any<unsigned char>()))},
        {"0x20009", "A word needs a second group to be written", CALL(rig->IO->WriteWord(IOType::GeneralOutput, 512, Any<unsigned short>())),
         CALL(rig->IO->WriteWord(IOType::GeneralOutput, 511, Any<unsigned short>()))},
        {"0x20011", "needs the previous angles", CheckKinematics(1, false), CheckKinematics(1, true)},
        {"0x20012", "neither 0 (figure) nor 1 (Delta)", CheckKinematics(2, true), CheckKinematics(0, false)},
        {"0x20013", "before the request was sent",
         CALL(rig->Kinematics->ConvertPositionFromCartesian(R1, Any<PositionData>(),
                                                            KinematicConversions::PulseToJointAngle,
                                                            KinematicType::Delta, {}, Any<PositionData>()))},
        {"0x20014", "before the request was sent",
         CALL(rig->Kinematics->ConvertPosition(R1, Any<PositionData>(), KinematicConversions::CartesianPosToPulse,
                                               Any<PositionData>()))},
        {"0x20015", "from YA up, robot and user", ReadPosition(R1, ToolCoordinate, 1, 0),
         ReadPosition(R1, RobotCoordinate, 1, 0)},
        {"0x20015", "from YA up, robot and user", ReadPosition(R1, RobotCoordinate, 1, 0),
         ReadPosition(R1, BaseCoordinate, 1, 0), VersionFS},
        {"0x20015", "not given in joint angles", AddPoint(PointIn(JointAngle)), AddPoint(PointIn(BaseCoordinate))},
        {"0x20015", "not given in joint angles", WritePosition(JointAngle, 1, 0), WritePosition(Pulse, 1, 0)},
        {"0x20016", "Use tool 0", ReadPosition(R1, Pulse, 1, 1), ReadPosition(R1, Pulse, 1, 0), VersionFS},
        {"0x30001", "", AddPoint(Point(R1, 100.01)), AddPoint(Point(R1, 100.0))},
        {"0x30002", "", AddPoint(Point(R1, 0.09, MoveInterpolationType::Line)),
         AddPoint(Point(R1, 0.1, MoveInterpolationType::Line))},
        {"0x30005", "no motion, conversion, job stack or parameters", StartMotion, nullptr, VersionFS},
        {"0x30005", "no motion, conversion, job stack or parameters", ReadParameter(SystemParameterType::RS, 22),
         nullptr, VersionDN},
        {"0x30006", "wrong address",
         [](Rig&) {
             StatusInfo status;
             static_cast<void>(Connect(test::NextLoopbackAddress(), status, 1, 0, false));
             return status;
         }},
        {"0x30007", "network inputs, general outputs and interface panel inputs", WriteByte(30010), WriteByte(60010)},
        {"0x30007", "network inputs, general outputs and interface panel inputs", WriteByte(10), WriteByte(10010)},
        {"io:40961", "DS, DN and FS do not write it", WriteByte(10010), WriteByte(25010), VersionFS},
        {"io:40961", "begins at a multiple of ten", WriteByte(27011), WriteByte(27010)},
        {"0x30008", "above 2048",
         CALL(rig->IO->WriteRegister(2049, Any<unsigned short>())), readByteVariable(0)},
        {"0x30008", "fewer variables of this kind", readByteVariable(2048)},
        {"0x30009", "20 to 100 per cent", AddPoint(PointOfRatios(19.99, 20)), AddPoint(PointOfRatios(20, 100))},
        {"0x30010", "20 to 100 per cent", AddPoint(PointOfRatios(20, 100.01)), AddPoint(PointOfRatios(20, 100))},
        {"0x30011", "no such parameter", ReadParameter(SystemParameterType{7}, 1)},
        {"0x30012", "S1C, S1E and S2E", ReadParameter(SystemParameterType::S2E, 1),
         ReadParameter(SystemParameterType::S3C, 1)},
        {"0x30013", "headers of another version",
         [](Rig&) {
             StatusInfo status;
             OpenConnection("127.0.0.1", status, 1, 0, false, "1.1.4");
             return status;
         }},
        {"0x30014", "name of the file", Load("B.JBI", Job), Load("A.JBI", Job)},
        {"0x30014", "in upper case", Load("A.JBI", "//NAME a")},
        {"0x30014", "Of a path only the beginning is searched, normally 479 characters",
         LoadPath("A.JBI", std::string(479, ' ') + "//NAME A"), LoadPath("A.JBI", std::string(471, ' ') + "//NAME A")},
        {"0x30015", "no such group", ReadPosition(R2, Pulse, 1, 0), ReadPosition(S3, Pulse, 1, 0)},
        {"0x30016", "The parameter has no such group", ReadParameter(SystemParameterType::S1C, 1, 0),
         ReadParameter(SystemParameterType::S1C, 1, 1)},
        {"0x30017", "no such category",
         CALL(rig->Faults->GetAlarmHistory(AlarmCategory{500}, 1, Any<AlarmHistory>()))},
        {"0x50000", "not the IPv4 address of a host", Observe("127.1")},
        {"0x50001", "without motion targets",
         [](Rig& rig) {
             StatusInfo status;
             ConnectOptions options{.address = rig.Address(), .access = Access::Operate};
             return Connect(options, status)->MotionManager->MotionStart();
         },
         [](Rig& rig) {
             StatusInfo status;
             ConnectOptions options{.address = rig.Address(), .access = Access::Full};
             return Connect(options, status)->MotionManager->MotionStart();
         }},
        {"0x50002", "no program of it listens", Observe(test::NextLoopbackAddress())},
        {"0x50011", "higher than that of the last step",
         CALL(rig->MotionManager->WaitUntilSent(2, 0))},
        {"0x50012", "know no IPv4 address", Observe(test::UnknownName()), Observe("localhost")},
        {"0x50013", "out of range", [](Rig&) { return Fleet().Add("press", {.address = "127.0.0.1"}, {}); },
         [](Rig&) { return Fleet().Add("press", {.address = "127.0.0.1"}, {{.items = {FleetItem::State()}}}); }},
        {"0x50014", "never added", [](Rig&) { return Fleet().Remove("press"); }},
        {"0x40000001", "a folder, a pipe or a device",
         [](Rig& rig) {
             test::ScratchFolder const folder;
             std::filesystem::create_directory(folder.Path() / "A.DAT");
             return rig->Files->LoadToControllerFromPath((folder.Path() / "A.DAT").string());
         }},
        {"3370", "none of the controller's four motion slots", AddPoint(Point(S3, 10.0)), AddPoint(Point(S2, 10.0))},
        {"3370", "the second replaces the first", AddPoint(Point(R2, 10.0)),
         AddPoint(Point(R1, 10.0), Point(R1, 20.0))},
        {"3460", "the type is Undefined", WritePosition(Undefined, 1, 0), WritePosition(MasterTool, 1, 0)},
        {"45069", "64 where there are 64", WritePosition(Pulse, 1, 65), nullptr},
        {"45069", "64 where there are 64", ReadPosition(R1, UserCoordinate, 1, 65)},
        {"45070", "it is 1 to 63", WritePosition(UserCoordinate, 64, 0), WritePosition(UserCoordinate, 63, 0)},
        {"45070", "it is 1 to 63", ReadPosition(R1, UserCoordinate, 0, 0), ReadPosition(R1, UserCoordinate, 1, 0)},
        {"job:20992", "above 9999", CALL(rig->Job->SetActiveJob("A", 10000))},
        {"motion:65504", "none of the four motion slots",
         [](Rig& rig) {
             // The library's own check leaves the number as it is.
             StatusInfo status;
             rig->MotionManager->GetMotionTargetProgress(S3, status);
             return StatusInformation(status.StatusCode - 50'000'000);
         }},
    });
    Check(cases);
    std::set<std::int32_t> held(NotOfAnOperation.begin(), NotOfAnOperation.end());
    held.insert(0x20008); // below
    for (Case const& each : cases) {
        held.insert(Explain(each.card).front().code);
    }
    for (Explanation const& card : ExplainAll()) {
        EXPECT_TRUE(card.code < 0x10000 || held.contains(card.code)) << std::hex << card.code;
    }
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

TEST(Cards, NameTheKindsOfFilesThatAreWritten) {
    Explanation const card = Explain("0x20008").front();
    std::string const cause(card.advice.cause);
    Rig rig(VersionYA);
    for (FileKind const& kind : FileKinds) {
        std::string const extension(kind.Extension());
        std::size_t const place = cause.find(extension.substr(1));
        ASSERT_NE(place, std::string::npos) << extension;
        int const code = rig->Files->LoadToControllerFromString("A" + extension, Job).StatusCode;
        EXPECT_EQ(code == card.code, place > cause.find(" not ")) << extension << ' ' << code;
    }
}

/// 64 tool files are numbered 0 to 63, yet the library lets 64 pass to the controller, which refuses it.
TEST(Cards, NameTheSideThatRefusesTheToolBehindTheLast) {
    Rig rig(VersionYA);
    EXPECT_EQ(WritePosition(CoordinateType::Pulse, 1, 65)(rig).Message, "Tool File does not exist. Check tool number.");
    EXPECT_EQ(WritePosition(CoordinateType::Pulse, 1, 64)(rig).Message, "Tool No. setting error");
}

} // namespace
} // namespace harvlink::cli
