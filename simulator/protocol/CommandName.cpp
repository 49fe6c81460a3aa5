#include "simulator/protocol/CommandName.h"

#include <algorithm>
#include <array>
#include <utility>

#include "wire/CommandNumber.h"

namespace harvlink::simulator {

namespace {

constexpr std::string_view Unknown = "unknown";

using NamedCommand = std::pair<CommandNumber, std::string_view>;

constexpr std::array Names = std::to_array<NamedCommand>({
    {CommandNumber::AlarmDataRead, "AlarmDataRead"},
    {CommandNumber::AlarmHistoryRead, "AlarmHistoryRead"},
    {CommandNumber::StatusRead, "StatusRead"},
    {CommandNumber::ExecutingJobRead, "ExecutingJobRead"},
    {CommandNumber::AxisConfigurationRead, "AxisConfigurationRead"},
    {CommandNumber::RobotPositionRead, "RobotPositionRead"},
    {CommandNumber::PositionErrorRead, "PositionErrorRead"},
    {CommandNumber::TorqueRead, "TorqueRead"},
    {CommandNumber::IOData, "IOData"},
    {CommandNumber::RegisterData, "RegisterData"},
    {CommandNumber::ByteVariable, "ByteVariable"},
    {CommandNumber::IntegerVariable, "IntegerVariable"},
    {CommandNumber::DoubleIntVariable, "DoubleIntVariable"},
    {CommandNumber::RealVariable, "RealVariable"},
    {CommandNumber::RobotPositionVariable, "RobotPositionVariable"},
    {CommandNumber::BasePositionVariable, "BasePositionVariable"},
    {CommandNumber::StationPositionVariable, "StationPositionVariable"},
    {CommandNumber::AlarmReset, "AlarmReset"},
    {CommandNumber::HoldOrServo, "HoldOrServo"},
    {CommandNumber::CycleModeSwitch, "CycleModeSwitch"},
    {CommandNumber::PendantMessage, "PendantMessage"},
    {CommandNumber::JobStart, "JobStart"},
    {CommandNumber::JobSelect, "JobSelect"},
    {CommandNumber::OperatingTimeRead, "OperatingTimeRead"},
    {CommandNumber::SystemInformationRead, "SystemInformationRead"},
    {CommandNumber::StringVariable, "StringVariable"},
    {CommandNumber::UAPIPositionRead, "UAPIPositionRead"},
    {CommandNumber::MotionStart, "MotionStart"},
    {CommandNumber::MotionStop, "MotionStop"},
    {CommandNumber::MotionClearTargets, "MotionClearTargets"},
    {CommandNumber::MotionSendTarget, "MotionSendTarget"},
    {CommandNumber::MotionTargetProgress, "MotionTargetProgress"},
    {CommandNumber::MotionSetCoord, "MotionSetCoord"},
    {CommandNumber::MotionSetTool, "MotionSetTool"},
    {CommandNumber::MotionSetSpeed, "MotionSetSpeed"},
    {CommandNumber::MotionSetAccelRatio, "MotionSetAccelRatio"},
    {CommandNumber::MotionSetDecelRatio, "MotionSetDecelRatio"},
    {CommandNumber::MotionSetConfig, "MotionSetConfig"},
    {CommandNumber::ConvertJointAngleToCartesian, "ConvertJointAngleToCartesian"},
    {CommandNumber::ConvertCartesianToJointAngle, "ConvertCartesianToJointAngle"},
    {CommandNumber::ConvertPulseToJointAngle, "ConvertPulseToJointAngle"},
    {CommandNumber::ConvertJointAngleToPulse, "ConvertJointAngleToPulse"},
    {CommandNumber::UAPIWriteIO, "UAPIWriteIO"},
    {CommandNumber::SetAlarm, "SetAlarm"},
    {CommandNumber::SystemParameterRead, "SystemParameterRead"},
    {CommandNumber::JobStackRead, "JobStackRead"},
});

} // namespace

std::string_view NameOfCommand(std::uint16_t command) {
    auto const* const found = std::ranges::find(Names, static_cast<CommandNumber>(command), &NamedCommand::first);
    return found == Names.end() ? Unknown : found->second;
}

std::string_view NameOfFileService(std::uint8_t service) {
    switch (static_cast<FileServices>(service)) {
    case FileServices::DeleteFile:
        return "DeleteFile";
    case FileServices::LoadFile:
        return "LoadFile";
    case FileServices::SaveFile:
        return "SaveFile";
    case FileServices::ListFile:
        return "ListFile";
    }
    return Unknown;
}

} // namespace harvlink::simulator
