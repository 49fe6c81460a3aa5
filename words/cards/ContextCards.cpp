#include <array>

#include "words/cards/ErrorCards.h"

namespace harvlink::words {

namespace {

constexpr std::string_view FieldOutOfRange = "A field of the target is out of range for this controller.";
constexpr std::string_view Coordinated = "The groups of a coordinated motion do not fit together.";
constexpr std::string_view CheckTarget = "The target's group, coordinate system, tool and kind of move.";

// clang-format off
constexpr auto Motion = std::to_array<CodeCard>({
    {65535, "MotionManager failure. Ensure remote control mode is selected.",
     {"Most often the controller is not in remote mode.", "harvlink status; the key switch.", Retry::AfterFix}},
    {65534, "Servo Off", {"Servo power is off.", "harvlink servo on.", Retry::AfterFix}},
    {65533, "Hold Is On", {"A hold is active: pendant, external or commanded.", "harvlink status; harvlink hold off.",
                           Retry::AfterFix}},
    {65532, "Alarm Is Active", {"An alarm or error is active.",
                                "harvlink alarms; remove the cause, then harvlink alarms clear.", Retry::AfterFix}},
    {65531, "Home Position Not Set", {"The machine has no home position.", "Home position calibration on the pendant.",
                                      Retry::AfterFix}},
    {65530, "Home Position Not Checked", {"The home position was not confirmed since power came back.",
                                          "The second home position on the pendant.", Retry::AfterFix}},
    {65529, "Not In Play Mode", {"The controller is not in a mode in which it moves.", "harvlink status.",
                                 Retry::AfterFix}},
    {65528, "Job Currently Running. End job before starting motion remotely.",
     {"A job runs.", "harvlink job status; wait for its end or harvlink hold on.", Retry::Later}},
    {65527, "Duplicate Playback Group", {"The group is moved twice at once: a job moves it too, or two motion slots "
                                         "name it.",
                                         "harvlink job status; harvlink param 11:33 11:34 11:35 11:36.",
                                         Retry::AfterFix}},
    {65520, "Timeout", {"The controller's buffer of targets is full. The controller sets the pace by this answer: "
                        "the library sends the same target again every millisecond.",
                        "Nothing while the robot moves. If it stands still: hold, alarm, missing start.", Retry::Yes}},
    {65519, "Playback Interrupted", {"The motion was stopped: hold, alarm, loss of servo power, another mode.",
                                     "harvlink status, harvlink alarms; where the robot is: harvlink position R1.",
                                     Retry::ReadBackFirst}},
    {65504, "Group Does Not Exist", {"The group has none of the four motion slots.",
                                     "The groups of the slots: harvlink param 11:33 11:34 11:35 11:36.", Retry::No}},
    {65503, "This robot is attached to a base group but no base group movement was provided.",
     {"A robot on a base axis moves only together with it.", "Add a target of the base group to the step.", Retry::No}},
    {65502, "Interpolation Out Of Range", {FieldOutOfRange, "The kind of move: joint, line, circle.", Retry::No}},
    {65501, "User Coordinate System Out Of Range", {FieldOutOfRange, "The user coordinate: 1 to 63, taught.",
                                                    Retry::No}},
    {65500, "Task Number Out Of Range", {FieldOutOfRange, CheckTarget, Retry::No}},
    {65499, "Task And Base Number Unmatched", {"The base axis does not belong to this robot.", CheckTarget, Retry::No}},
    {65498, "Coordinated Motion Master Group Is Illegal", {Coordinated, CheckTarget, Retry::No}},
    {65497, "Coordinated Motion Slave Group Is Illegal", {Coordinated, CheckTarget, Retry::No}},
    {65496, "Coordinated Motion Master Interpolation Out Of Range", {Coordinated, CheckTarget, Retry::No}},
    {65495, "Coordinated Motion Slave Interpolation Out Of Range", {Coordinated, CheckTarget, Retry::No}},
    {65494, "Coordinated Motion Master Lacking", {Coordinated, CheckTarget, Retry::No}},
    {65493, "Coordinated Motion Task And Group Unmatched", {Coordinated, CheckTarget, Retry::No}},
    {65492, "Coordinated Motion Multiple Master Or Slave", {Coordinated, CheckTarget, Retry::No}},
    {65491, "Tool Number Out Of Range", {FieldOutOfRange, "The tool number: 0 to 63, with a tool file.", Retry::No}},
    {65490, "Tool Set Inhibited", {"The controller does not allow a change of tool here.",
                                   "Use the active tool, or allow it by the controller's parameter.", Retry::AfterFix}},
    {65489, "Acceleration Value Out Of Range", {"The acceleration ratio is not 20 to 100 per cent.", "The value.",
                                                Retry::No}},
    {65488, "Deceleration Value Out Of Range", {"The deceleration ratio is not 20 to 100 per cent.", "The value.",
                                                Retry::No}},
    {65446, "User frame is unspecified when requested coordinate system is user",
     {"The user coordinate of the target was never taught.", "Its number; teach it on the pendant.", Retry::AfterFix}},
    {65445, "Tool is unspecified when requested coordinate system is tool",
     {"The tool of the target has no tool file.", "Its number.", Retry::AfterFix}},
});

constexpr auto ControlGroup = std::to_array<CodeCard>({
    {40961, "Invalid Control Group Id", {"The controller has no such group.",
                                         "The groups: harvlink position R1, B1, S1.", Retry::No}},
});

constexpr auto Job = std::to_array<CodeCard>({
    {20992, "Invalid line number.", {"The job has no such line, or it is above 9999.",
                                     "harvlink files cat NAME.JBI; lines count from 0.",
                                     Retry::No}},
    {16448, "Invalid job name.", {"There is no job of this name.",
                                  "harvlink files list JBI; upper and lower case are the same.", Retry::No}},
    {65535, "Invalid task number.", {"The controller has no such task.", "0 is the master task.", Retry::No}},
});

constexpr auto Conversion = std::to_array<CodeCard>({
    {65535, "Failed in conversion.", {"The controller could not convert the position and gives no reason.",
                                      "Group, tool and kinematic type; whether the position can be reached.",
                                      Retry::No}},
    {65534, "Conversion impossible.", {"The group has no such conversion.", "Only robots have Cartesian positions.",
                                       Retry::No}},
    {65533, "Group is out of range.", {"The controller has no such group.",
                                       "The groups: harvlink position R1, B1, S1.", Retry::No}},
    {65531, "Inverse kinematics wrong.", {"No posture of the arm reaches the position in this figure.",
                                          "Another figure or --type; the reach of the arm.", Retry::No}},
    {65530, "Invalid cartesian position.", {"The position is out of reach, or its values are not a position.",
                                            "X, Y, Z in mm, Rx, Ry, Rz in degrees, coordinate system, tool.",
                                            Retry::No}},
});

constexpr auto Signals = std::to_array<CodeCard>({
    {40961, "The address is invalid.", {"No signal has this address, or a byte or word does not begin at it, or DS, "
                                        "DN and FS do not write it.",
                                         "A byte or word begins at a multiple of ten. harvlink io get --help.",
                                        Retry::No}},
    {65535, "Writing to this address requires REMOTE mode.", {"The controller is not in remote mode.",
                                                              "harvlink status; the key switch.", Retry::AfterFix}},
    {0x30007, "This IO address cannot be written to.", {"Programs do not write signals of this class.",
                                                        "Written are network inputs, general outputs and interface "
                                                        "panel inputs; on DS, DN and FS network inputs only.",
                                                        Retry::No}},
});

constexpr auto Files = std::to_array<CodeCard>({
    {58014, "File is not writable.", {"The controller does not allow this file to be written, or not in this mode.",
                                      "Remote mode, the security level and the edit lock of the job.",
                                      Retry::AfterFix}},
});

constexpr auto Contexts = std::to_array<CodeContext>({
    {"motion", 50'000'000, Motion},
    {"group", 60'000'000, ControlGroup},
    {"job", 80'000'000, Job},
    {"conversion", 0x70000000, Conversion},
    {"io", 0, Signals},
    {"file", 0, Files},
});
// clang-format on

} // namespace

std::span<CodeContext const> CodeContexts() {
    return Contexts;
}

} // namespace harvlink::words
