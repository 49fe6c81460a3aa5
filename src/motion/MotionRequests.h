#pragma once

#include "motion/MotionFolding.h"
#include "motion/MotionMessages.h"
#include "wire/SystemParameterRequest.h"

namespace harvlink {

/// A request that starts, stops or prepares motion. Its answer carries a status and nothing else.
template <CommandNumber number, typename Message>
struct MotionRequest {
    using Reply = std::uint8_t;
    static constexpr CommandNumber command = number;
    static constexpr Service service = Service::WriteAll;
    static constexpr std::uint16_t instance = 0;
    Message payload{};

    static StatusInfo Decode(StatusInfo status) {
        FoldMotionStatus(status);
        return status;
    }
};

using MotionStartRequest = MotionRequest<CommandNumber::MotionStart, std::int32_t>;
using MotionStopRequest = MotionRequest<CommandNumber::MotionStop, std::int32_t>;
using ClearTargetsRequest = MotionRequest<CommandNumber::MotionClearTargets, MotionClearGroupTargets>;
using SendTargetRequest = MotionRequest<CommandNumber::MotionSendTarget, MotionTargetSend>;
using SetCoordRequest = MotionRequest<CommandNumber::MotionSetCoord, MotionSetCoord>;
using SetToolRequest = MotionRequest<CommandNumber::MotionSetTool, SetToolMsg>;
using SetSpeedRequest = MotionRequest<CommandNumber::MotionSetSpeed, SetSpeedMsg>;
using SetAccelRatioRequest = MotionRequest<CommandNumber::MotionSetAccelRatio, SetAccelRatioMsg>;
using SetDecelRatioRequest = MotionRequest<CommandNumber::MotionSetDecelRatio, SetDecelRatioMsg>;
using SetConfigRequest = MotionRequest<CommandNumber::MotionSetConfig, RobotConfigMsg>;

/// How many targets a motion slot has reached, with the part of the way to the next. 0 after a failure.
struct TargetProgressRequest {
    using Reply = double;
    static constexpr CommandNumber command = CommandNumber::MotionTargetProgress;
    static constexpr Service service = Service::ReadAll;
    static constexpr std::uint16_t instance = 0;
    TargetControlGroup payload;

    static StatusInfo Decode(StatusInfo status, ReplyTo<TargetProgressRequest> const& reply, double& progress) {
        FoldMotionStatus(status);
        progress = status.StatusCode == 0 ? reply.payload : 0.0;
        return status;
    }
};

/// Which control group a motion slot stands for; 0 after a failure.
struct MotionSlotRequest : SystemParameterRequest {
    explicit MotionSlotRequest(int parameterNumber);

    static StatusInfo Decode(StatusInfo status, ReplyTo<SystemParameterRequest> const& reply, ControlGroupId& group);
};

/// The parameters that name the groups of the four slots.
inline constexpr std::array<int, MotionSlots> MotionSlotParameters{33, 34, 35, 36};

/// Raises an alarm. Its status is not read against the motion table, unlike that of the other commands.
struct SetAlarmRequest {
    using Reply = std::uint32_t;
    static constexpr CommandNumber command = CommandNumber::SetAlarm;
    static constexpr Service service = Service::WriteAll;
    static constexpr std::uint16_t instance = 0;
    SetAlarmMsg payload;

    /// Only the first 31 bytes of the text are sent.
    SetAlarmRequest(std::string_view text, std::uint8_t subCode);
};

} // namespace harvlink
