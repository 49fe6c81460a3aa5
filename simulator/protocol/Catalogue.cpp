#include "simulator/protocol/Catalogue.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace harvlink::simulator {

namespace {

constexpr std::uint16_t FirstExtendedCommand = 829;
constexpr std::uint16_t AnyInstance = 0xFFFF;

/// One allowed form of a command.
struct Row {
    CommandNumber command;
    std::uint8_t attribute;
    std::uint8_t service;
    std::uint16_t minInstance;
    std::uint16_t maxInstance;
    std::uint16_t minPayload;
    std::uint16_t maxPayload;
};

using enum CommandNumber;

/// Sorted by command. A client may send a number in its own size or, as a bit set, in 8 bytes.
constexpr std::array Rows{
    Row{AlarmDataRead, 0, ServiceReadAll, 1, 4, 0, 0},
    Row{AlarmHistoryRead, 0, ServiceReadAll, 1, 4100, 0, 0},
    Row{StatusRead, 0, ServiceReadAll, 1, 1, 0, 0},
    Row{StatusRead, 1, ServiceReadOne, 1, 1, 0, 0},
    Row{ExecutingJobRead, 0, ServiceReadAll, 0, AnyInstance, 0, 0},
    Row{AxisConfigurationRead, 0, ServiceReadAll, 0, AnyInstance, 0, 0},
    Row{RobotPositionRead, 0, ServiceReadAll, 0, AnyInstance, 0, 0},
    Row{PositionErrorRead, 0, ServiceReadAll, 0, AnyInstance, 0, 0},
    Row{TorqueRead, 0, ServiceReadAll, 0, AnyInstance, 0, 0},
    Row{IOData, 1, ServiceReadOne, 0, AnyInstance, 0, 0},
    Row{IOData, 1, ServiceWriteOne, 0, AnyInstance, 1, 8},
    Row{RegisterData, 1, ServiceReadOne, 0, AnyInstance, 0, 0},
    Row{RegisterData, 1, ServiceWriteOne, 0, AnyInstance, 2, 8},
    Row{ByteVariable, 1, ServiceReadOne, 0, AnyInstance, 0, 0},
    Row{ByteVariable, 1, ServiceWriteOne, 0, AnyInstance, 1, 1},
    Row{IntegerVariable, 1, ServiceReadOne, 0, AnyInstance, 0, 0},
    Row{IntegerVariable, 1, ServiceWriteOne, 0, AnyInstance, 2, 2},
    Row{DoubleIntVariable, 1, ServiceReadOne, 0, AnyInstance, 0, 0},
    Row{DoubleIntVariable, 1, ServiceWriteOne, 0, AnyInstance, 4, 4},
    Row{RealVariable, 1, ServiceReadOne, 0, AnyInstance, 0, 0},
    Row{RealVariable, 1, ServiceWriteOne, 0, AnyInstance, 4, 4},
    Row{RobotPositionVariable, 0, ServiceReadAll, 0, AnyInstance, 0, 0},
    Row{RobotPositionVariable, 0, ServiceWriteAll, 0, AnyInstance, 52, 52},
    Row{BasePositionVariable, 0, ServiceReadAll, 0, AnyInstance, 0, 0},
    Row{BasePositionVariable, 0, ServiceWriteAll, 0, AnyInstance, 36, 36},
    Row{StationPositionVariable, 0, ServiceReadAll, 0, AnyInstance, 0, 0},
    Row{StationPositionVariable, 0, ServiceWriteAll, 0, AnyInstance, 36, 36},
    Row{AlarmReset, 1, ServiceWriteOne, 1, 2, 4, 4},
    Row{HoldOrServo, 1, ServiceWriteOne, 1, 2, 4, 4},
    Row{CycleModeSwitch, 1, ServiceWriteOne, 2, 2, 4, 4},
    Row{PendantMessage, 1, ServiceWriteOne, 1, 1, 0, 30},
    Row{JobStart, 1, ServiceWriteOne, 1, 1, 4, 4},
    Row{JobSelect, 0, ServiceWriteAll, 1, 1, 36, 36},
    Row{OperatingTimeRead, 0, ServiceReadAll, 0, AnyInstance, 0, 0},
    Row{SystemInformationRead, 0, ServiceReadAll, 0, AnyInstance, 0, 0},
    Row{StringVariable, 1, ServiceReadOne, 0, AnyInstance, 0, 0},
    Row{StringVariable, 1, ServiceWriteOne, 0, AnyInstance, 0, 32},
    Row{UAPIPositionRead, 0, ServiceReadAll, 0, 0, 16, 16},
    Row{MotionStart, 0, ServiceWriteAll, 0, 0, 4, 4},
    Row{MotionStop, 0, ServiceWriteAll, 0, 0, 4, 4},
    Row{MotionClearTargets, 0, ServiceWriteAll, 0, 0, 8, 8},
    Row{MotionSendTarget, 0, ServiceWriteAll, 0, 0, 296, 296},
    Row{MotionTargetProgress, 0, ServiceReadAll, 0, 0, 4, 4},
    Row{MotionSetCoord, 0, ServiceWriteAll, 0, 0, 12, 12},
    Row{MotionSetTool, 0, ServiceWriteAll, 0, 0, 8, 8},
    Row{MotionSetSpeed, 0, ServiceWriteAll, 0, 0, 16, 16},
    Row{MotionSetAccelRatio, 0, ServiceWriteAll, 0, 0, 8, 8},
    Row{MotionSetDecelRatio, 0, ServiceWriteAll, 0, 0, 8, 8},
    Row{MotionSetConfig, 0, ServiceWriteAll, 0, 0, 8, 8},
    Row{ConvertJointAngleToCartesian, 0, ServiceReadAll, 0, 0, 56, 56},
    Row{ConvertCartesianToJointAngle, 0, ServiceReadAll, 0, 0, 92, 92},
    Row{ConvertPulseToJointAngle, 0, ServiceReadAll, 0, 0, 56, 56},
    Row{ConvertJointAngleToPulse, 0, ServiceReadAll, 0, 0, 56, 56},
    Row{UAPIWriteIO, 0, ServiceWriteAll, 0, 0, 8, 8},
    Row{SetAlarm, 0, ServiceWriteAll, 0, 0, 36, 36},
    Row{SystemParameterRead, 0, ServiceReadAll, 0, 0, 12, 12},
    Row{JobStackRead, 0, ServiceReadAll, 0, 0, 4, 4},
};

constexpr std::size_t Number(Row const& row) {
    return static_cast<std::size_t>(row.command);
}

static_assert(std::ranges::is_sorted(Rows, {}, Number));

/// The first row of each command; the number of rows for an unknown command.
constexpr auto FirstRows = [] {
    std::array<std::uint8_t, CommandLimit> first{};
    first.fill(Rows.size());
    for (std::size_t i = Rows.size(); i > 0; --i) {
        first[Number(Rows[i - 1])] = static_cast<std::uint8_t>(i - 1);
    }
    return first;
}();

/// Null if the command has no such form.
Row const* FindRow(SubHeaderForSending const& asked) {
    for (std::size_t i = FirstRows[asked.command]; i < Rows.size() && Number(Rows[i]) == asked.command; ++i) {
        if (Rows[i].attribute == asked.attribute && Rows[i].service == asked.service) {
            return &Rows[i];
        }
    }
    return nullptr;
}

bool IsKnown(std::uint16_t command, bool extended) {
    return command < CommandLimit && FirstRows[command] < Rows.size() && (command < FirstExtendedCommand || extended);
}

} // namespace

Refusal CheckAgainstCatalogue(Request const& request, bool extended) {
    auto const& asked = request.subHeader;
    if (!IsKnown(asked.command, extended)) {
        return Refusal::UndefinedCommand;
    }
    auto const* const row = FindRow(asked);
    if (row == nullptr) {
        return Refusal::InvalidAttribute;
    }
    if (asked.instance < row->minInstance || asked.instance > row->maxInstance) {
        return Refusal::InvalidInstance;
    }
    if (request.payload.size() < row->minPayload || request.payload.size() > row->maxPayload) {
        return Refusal::DataSizeError;
    }
    return Refusal::None;
}

} // namespace harvlink::simulator
