#include <array>
#include <filesystem>
#include <optional>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "CardCase.h"
#include "status/MainStatusTable.h"
#include "support/ScratchFolder.h"
#include "support/UnknownName.h"

namespace harvlink::cli::cards {
namespace {

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

Operation ReadParameter(SystemParameterType type, int number, std::optional<int> group = std::nullopt) {
    return CALL(group ? rig->Status->ReadSystemParam(type, number, *group, Any<int>())
                      : rig->Status->ReadSystemParam(type, number, Any<int>()));
}

Operation CheckKinematics(int parameter, bool hasAngles) {
    return [=](Rig& rig) {
        rig.Set([&](ControllerModel& model) { model.parameters.Set(SystemParameterType::S2C, 0, 430, parameter); });
        return rig.Conversion().CheckInputCartPosParams(KinematicType::KinematicFromSystem, hasAngles);
    };
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
} // namespace harvlink::cli::cards
