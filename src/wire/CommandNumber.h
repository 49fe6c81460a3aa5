#pragma once

#include <cstdint>

namespace harvlink {

/// Command numbers of the robot control port. Every controller understands those up to 140; those from 829 up are the
/// extended commands of `VersionYA` and newer.
enum class CommandNumber : std::uint16_t {
    AlarmDataRead = 112,
    AlarmHistoryRead = 113,
    StatusRead = 114,
    ExecutingJobRead = 115,
    AxisConfigurationRead = 116,
    RobotPositionRead = 117,
    PositionErrorRead = 118,
    TorqueRead = 119,
    IOData = 120,
    RegisterData = 121,
    ByteVariable = 122,
    IntegerVariable = 123,
    DoubleIntVariable = 124,
    RealVariable = 125,
    RobotPositionVariable = 127,
    BasePositionVariable = 128,
    StationPositionVariable = 129,
    AlarmReset = 130,
    HoldOrServo = 131,
    CycleModeSwitch = 132,
    PendantMessage = 133,
    JobStart = 134,
    JobSelect = 135,
    OperatingTimeRead = 136,
    SystemInformationRead = 137,
    StringVariable = 140,
    UAPIPositionRead = 829,
    MotionStart = 839,
    MotionStop = 840,
    MotionClearTargets = 841,
    MotionSendTarget = 842,
    MotionTargetProgress = 844,
    MotionSetCoord = 845,
    MotionSetTool = 846,
    MotionSetSpeed = 847,
    MotionSetAccelRatio = 848,
    MotionSetDecelRatio = 849,
    MotionSetConfig = 850,
    ConvertJointAngleToCartesian = 866,
    ConvertCartesianToJointAngle = 867,
    ConvertPulseToJointAngle = 868,
    ConvertJointAngleToPulse = 869,
    UAPIWriteIO = 909,
    SetAlarm = 916,
    SystemParameterRead = 924,
    JobStackRead = 981,
};

/// Value of the attribute byte.
enum class FixedField : std::uint8_t { WholeRecord = 0, FirstAttribute = 1 };

/// Value of the service byte on the robot control port.
inline constexpr std::uint8_t ServiceReadAll = 1;
inline constexpr std::uint8_t ServiceWriteAll = 2;
inline constexpr std::uint8_t ServiceReadOne = 14;
inline constexpr std::uint8_t ServiceWriteOne = 16;

/// The same as a type. Which attribute goes with a service is fixed: `FieldOf`.
enum class Service : std::uint8_t {
    ReadAll = ServiceReadAll,
    WriteAll = ServiceWriteAll,
    ReadOne = ServiceReadOne,
    WriteOne = ServiceWriteOne,
};

constexpr FixedField FieldOf(Service service) {
    bool const isWhole = service == Service::ReadAll || service == Service::WriteAll;
    return isWhole ? FixedField::WholeRecord : FixedField::FirstAttribute;
}

/// Value of the service byte on the file control port.
enum class FileServices : std::uint8_t {
    DeleteFile = 0x09,
    LoadFile = 0x15, ///< from the library to the controller
    SaveFile = 0x16, ///< from the controller to the library
    ListFile = 0x32,
};

} // namespace harvlink
