#include "status/ErrorTables.h"

namespace harvlink {
namespace {

// clang-format off
constexpr auto jobErrors = SortRows(std::to_array<StatusText<std::int32_t>>({
    {20992, "Invalid line number."},
    {16448, "Invalid job name."},
    {65535, "Invalid task number."},
}));

constexpr auto fileErrors = SortRows(std::to_array<StatusText<FileErrorHandling::FileErrors>>({
    {FileErrorHandling::FileErrors::FileNotWritable, "File is not writable."},
}));

constexpr auto ioErrors = SortRows(std::to_array<StatusText<IOError>>({
    {IOError::RemoteModeRequired, "Writing to this address requires REMOTE mode."},
    {IOError::InvalidAddress, "The address is invalid."},
    {IOError::AddressNotWritable, "This IO address cannot be written to."},
}));

constexpr auto motionErrors = SortRows(std::to_array<StatusText<std::int32_t>>({
    {65535, "MotionManager failure. Ensure remote control mode is selected."},
    {65534, "Servo Off"},
    {65533, "Hold Is On"},
    {65532, "Alarm Is Active"},
    {65531, "Home Position Not Set"},
    {65530, "Home Position Not Checked"},
    {65529, "Not In Play Mode"},
    {65528, "Job Currently Running. End job before starting motion remotely."},
    {65527, "Duplicate Playback Group"},
    {65520, "Timeout"},
    {65519, "Playback Interrupted"},
    {65504, "Group Does Not Exist"},
    {65503, "This robot is attached to a base group but no base group movement was provided."},
    {65502, "Interpolation Out Of Range"},
    {65501, "User Coordinate System Out Of Range"},
    {65500, "Task Number Out Of Range"},
    {65499, "Task And Base Number Unmatched"},
    {65498, "Coordinated Motion Master Group Is Illegal"},
    {65497, "Coordinated Motion Slave Group Is Illegal"},
    {65496, "Coordinated Motion Master Interpolation Out Of Range"},
    {65495, "Coordinated Motion Slave Interpolation Out Of Range"},
    {65494, "Coordinated Motion Master Lacking"},
    {65493, "Coordinated Motion Task And Group Unmatched"},
    {65492, "Coordinated Motion Multiple Master Or Slave"},
    {65491, "Tool Number Out Of Range"},
    {65490, "Tool Set Inhibited"},
    {65489, "Acceleration Value Out Of Range"},
    {65488, "Deceleration Value Out Of Range"},
    {65446, "User frame is unspecified when requested coordinate system is user"},
    {65445, "Tool is unspecified when requested coordinate system is tool"},
}));

constexpr auto motionShortErrors = SortRows(std::to_array<StatusText<std::int32_t>>({
    {65535, "Motion fail Check remote mode."},
    {65534, "Servo Off"},
    {65533, "Hold Is On"},
    {65532, "Alarm Is Active"},
    {65531, "Home Position Not Set"},
    {65530, "Home Position Not Checked"},
    {65529, "Not In Play Mode"},
    {65528, "Job Currently Running."},
    {65527, "Duplicate Playback Group"},
    {65520, "Timeout"},
    {65519, "Playback Interrupted"},
    {65504, "Group Does Not Exist"},
    {65503, "Base Grp Motion is missing."},
    {65502, "Interpolation Out Of Range"},
    {65501, "User Coord Sys Out Of Range"},
    {65500, "Task Number Out Of Range"},
    {65499, "Task And Base No Unmatched"},
    {65498, "Coord Mot Master Grp Illegal"},
    {65497, "Coord Mot Slave Grp Illegal"},
    {65496, "Coord Mstr Intrp Out Of Rnge"},
    {65495, "Coord Slv Intrp Out Of Rnge"},
    {65494, "Coord Mot Master Lacking"},
    {65493, "Coord Task & Group Unmatch"},
    {65492, "Coord Multiple Mstr Or Slv"},
    {65491, "Tool Number Out Of Range"},
    {65490, "Tool Set Inhibited"},
    {65489, "Accel Value Out Of Range"},
    {65488, "Decel Value Out Of Range"},
    {65446, "User Frame Unspecified"},
    {65445, "Tool Unspecified"},
}));

constexpr auto conversionErrors = SortRows(std::to_array<StatusText<std::int32_t>>({
    {65535, "Failed in conversion."},
    {65534, "Conversion impossible."},
    {65533, "Group is out of range."},
    {65531, "Inverse kinematics wrong."},
    {65530, "Invalid cartesian position."},
}));

constexpr auto controlGroupErrors = SortRows(std::to_array<StatusText<std::int32_t>>({
    {40961, "Invalid Control Group Id"},
}));
// clang-format on

} // namespace

constexpr StatusTable<std::int32_t> JobErrorTable{jobErrors};
constexpr StatusTable<FileErrorHandling::FileErrors> FileErrorTable{fileErrors};
constexpr StatusTable<IOError> IOErrorTable{ioErrors};
constexpr StatusTable<std::int32_t> MotionErrorTable{motionErrors};
constexpr StatusTable<std::int32_t> MotionShortErrorTable{motionShortErrors};
constexpr StatusTable<std::int32_t> ConversionErrorTable{conversionErrors};
constexpr StatusTable<std::int32_t> ControlGroupErrorTable{controlGroupErrors};

} // namespace harvlink
