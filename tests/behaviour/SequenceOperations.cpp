#include "behaviour/Operation.h"
#include "support/ScratchFolder.h"

namespace harvlink::test {
namespace {

constexpr int unsupportedSequence = 0x30005;
constexpr int motionOffset = 50000000;
constexpr int conversionOffset = 0x70000000;

constexpr std::size_t blockSize = 479;

/// A file or list of two full blocks. The last acknowledgement is not answered.
Script TwoBlocks(unsigned service, std::string const& first, std::string const& second) {
    return {{service, Text(first), 1}, {service, Text(second), 0x80000002}, {.command = service, .isAnswered = false}};
}

void Put(char const* name, std::string const& content) {
    NotCounted const ofTest;
    WriteFile(name, content);
}
void Get(char const* name, std::string& content) {
    NotCounted const ofTest;
    content = ContentOf(name);
}

void AddFiles(Operations& table) {
    static std::string const content(500, 'x'); // two blocks
    Script const load(3, {0x15});
    static std::string const firstBlock(blockSize, '1');
    Script const save = TwoBlocks(0x16, firstBlock, std::string(blockSize, '2'));
    Script const list =
        TwoBlocks(0x32, std::string(blockSize - 2, ' ') + "A.", "JBI\r\n" + std::string(blockSize - 5, ' '));
    // A list ignores the status of its first exchange and keeps the block.
    Traits const firstIsDropped{.ignored = {0}};
    Add(table, load,
        BOTH(c.Files->LoadToControllerFromString("A.DAT", content), file_interface_LoadToControllerFromString, "A.DAT",
             content.c_str()));
    Add(table, load, "file_interface_LoadToControllerFromPath",
        ON_CLASS((Put("A.DAT", content), c.Files->LoadToControllerFromPath("A.DAT"))),
        ON_PLAIN((Put("A.DAT", content), file_interface_LoadToControllerFromPath(h, "A.DAT"))));
    Add<std::string, std::string>(
        table, save, "file_interface_SaveFromControllerToString",
        ON_CLASS(c.Files->SaveFromControllerToString("A.DAT", out)),
        [](ControllerHandle h, std::string* out) {
            IStatusInfo status;
            *out = Take(file_interface_SaveFromControllerToString(h, "A.DAT", &status));
            return status;
        },
        {}, [](std::size_t failed) { return failed == 0 ? "" : firstBlock; });
    // The output is the file, which does not change.
    Add<std::string, std::string>(
        table, save, "file_interface_SaveFromControllerToFile",
        [](QuorvanController& c, std::string& out) {
            Put("B.DAT", out);
            StatusInfo status = c.Files->SaveFromControllerToFile("A.DAT", "B.DAT", true);
            Get("B.DAT", out);
            return status;
        },
        [](ControllerHandle h, std::string* out) {
            Put("B.DAT", *out);
            IStatusInfo const status = file_interface_SaveFromControllerToFile(h, "A.DAT", "B.DAT", 1);
            Get("B.DAT", *out);
            return status;
        },
        {}, [](std::size_t) { return Poisoned<std::string>(); });
    Add(table, {{0x09}}, BOTH(c.Files->DeleteJobFile("A"), file_interface_DeleteJobFile, "A"));
    Add<int, int>(table, list, BOTH(c.Files->GetFileCount(FileType::JobFile, out), file_interface_GetFileCount, 0, out),
                  firstIsDropped);
    Add<std::vector<std::string>, std::vector<std::string>>(
        table, list, "file_interface_ListFiles", ON_CLASS(c.Files->ListFiles(FileType::JobFile, out, true)),
        [](ControllerHandle h, std::vector<std::string>* out) {
            IStatusInfo status;
            char* const joined = file_interface_ListFiles(h, 0, &status, true);
            NotCounted const ofTest;
            std::istringstream names(Take(joined));
            out->clear();
            for (std::string name; std::getline(names, name);) {
                out->push_back(name);
            }
            return status;
        },
        firstIsDropped);
}

Motion Point() {
    return {.controlGroup = ControlGroupId::R1, .speed = 50.0, .moveType = MoveInterpolationType::Joint};
}

/// Points only enter the queue: no exchange takes place.
void AddPoints(Operations& table) {
    Traits const queued{.statusOnOlder = unsupportedSequence, .successMessage = "Point added to trajectory."};
    auto const add = [&](char const* name, auto onClass, auto onPlain) {
        Add(
            table, {}, name, [=](QuorvanController& c, NoOutput&) { return onClass(*c.MotionManager, Point()); },
            [=](ControllerHandle h, NoOutput*) {
                auto const point = std::bit_cast<::Motion>(Point());
                return onPlain(h, &point);
            },
            queued);
    };
    add(
        "motion_manager_AddPointToTrajectory", [](auto& m, auto const& p) { return m.AddPointToTrajectory(p); },
        motion_manager_AddPointToTrajectory);
    add(
        "motion_manager_Add2PointsToTrajectory", [](auto& m, auto const& p) { return m.AddPointToTrajectory(p, p); },
        [](auto h, auto p) { return motion_manager_Add2PointsToTrajectory(h, p, p); });
    add(
        "motion_manager_Add3PointsToTrajectory", [](auto& m, auto const& p) { return m.AddPointToTrajectory(p, p, p); },
        [](auto h, auto p) { return motion_manager_Add3PointsToTrajectory(h, p, p, p); });
    add(
        "motion_manager_Add4PointsToTrajectory",
        [](auto& m, auto const& p) { return m.AddPointToTrajectory(p, p, p, p); },
        [](auto h, auto p) { return motion_manager_Add4PointsToTrajectory(h, p, p, p, p); });
}

void AddMotion(Operations& table) {
    std::map<int, int> const codes{{65535, 65535 - motionOffset}, {65534, 65534 - motionOffset}};
    Traits const plain{.codes = codes, .statusOnOlder = unsupportedSequence};
    Add<double, double>(
        table, {{844, Bytes(6) + U16(0x3ff8)}}, "motion_manager_GetMotionTargetProgress", // 1.5
        [](QuorvanController& c, double& out) {
            StatusInfo status;
            out = c.MotionManager->GetMotionTargetProgress(ControlGroupId::R1, status);
            return status;
        },
        [](ControllerHandle h, double* out) {
            IStatusInfo status;
            *out = motion_manager_GetMotionTargetProgress(h, 1, &status);
            return status;
        },
        plain);
    Add(table, {{839}}, BOTH(c.MotionManager->MotionStart(), motion_manager_MotionStart), plain);
    Add(table, {{840}}, BOTH(c.MotionManager->MotionStop(false), motion_manager_MotionStop, false), plain);
    // A failure of the clear that follows a stop is ignored.
    Add(table, {{840}, {841}}, BOTH(c.MotionManager->MotionStop(true), motion_manager_MotionStop, true),
        {.codes = codes, .statusOnOlder = unsupportedSequence, .ignored = {1}});
    Add(table, {{841}}, BOTH(c.MotionManager->ClearAllTrajectory(), motion_manager_ClearAllTrajectory), plain);
}

void AddConversion(Operations& table, KinematicConversions conversion, Script const& script) {
    bool const fromCartesian = conversion >= KinematicConversions::CartesianPosToJointAngle;
    static PositionData position{.coordinateType = CoordinateType::BaseCoordinate, .axes = {1, 2, 3, 4, 5, 6}};
    static std::array<double, 8> const angles{};
    std::map<int, int> const codes{{65535, 65535 - conversionOffset}, {65534, 65534 - conversionOffset}};
    Add<PositionData, ::PositionData>(
        table, script,
        fromCartesian ? "kinematics_interface_ConvertPositionFromCartesian" : "kinematics_interface_ConvertPosition",
        [=](QuorvanController& c, PositionData& out) {
            return fromCartesian
                       ? c.Kinematics->ConvertPositionFromCartesian(ControlGroupId::R1, position, conversion,
                                                                    KinematicType::KinematicFigure, angles, out)
                       : c.Kinematics->ConvertPosition(ControlGroupId::R1, position, conversion, out);
        },
        [=](ControllerHandle h, ::PositionData* out) {
            auto source = std::bit_cast<::PositionData>(position);
            int const number = static_cast<int>(conversion);
            return fromCartesian
                       ? kinematics_interface_ConvertPositionFromCartesian(h, 1, &source, number, 2, angles.data(), out)
                       : kinematics_interface_ConvertPosition(h, 1, &source, number, out);
        },
        {.codes = codes, .statusOnOlder = unsupportedSequence, .isUntouchedOnOlder = true},
        [=](std::size_t) {
            // One conversion sets the type of its output after a failure too.
            bool const hasType = conversion == KinematicConversions::CartesianPosToJointAngle;
            return PositionData{.coordinateType = hasType ? CoordinateType::JointAngle : CoordinateType::Pulse};
        });
}

void AddConversions(Operations& table) {
    using enum KinematicConversions;
    Bytes const converted = Words({2}) + U16(3) + U16(1) + Words({5, 0, 11, 22, 33, 44, 55, 66, 77, 88});
    AddConversion(table, JointAngleToCartesianPos, {{866, converted}});
    AddConversion(table, PulseToJointAngle, {{868, converted}});
    AddConversion(table, JointAngleToPulse, {{869, converted}});
    AddConversion(table, PulseToCartesianPos, {{868, converted}, {866, converted}});
    AddConversion(table, CartesianPosToJointAngle, {{867, converted}});
    AddConversion(table, CartesianPosToPulse, {{867, converted}, {869, converted}});
}

} // namespace

void AddSequenceOperations(Operations& table) {
    AddFiles(table);
    AddPoints(table);
    AddMotion(table);
    AddConversions(table);
}

} // namespace harvlink::test
