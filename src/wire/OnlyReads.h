#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "wire/Packets.h"

namespace harvlink {

/// A command and service that change nothing on the controller, on the port of a division.
struct ReadCommand {
    Division division;
    CommandNumber command; ///< none on the file port, where the service alone says what is meant
    std::uint8_t service;
};

/// All of them, in the order of their commands; whatever is not in here may write, start or move something. Of a conversion the controller only computes.
inline constexpr auto ReadCommands = [] {
    using enum CommandNumber;
    auto const whole = [](CommandNumber command) {
        return ReadCommand{Division::RobotControl, command, ServiceReadAll};
    };
    auto const one = [](CommandNumber command) { return ReadCommand{Division::RobotControl, command, ServiceReadOne}; };
    auto const file = [](FileServices service) {
        return ReadCommand{Division::FileControl, CommandNumber{}, static_cast<std::uint8_t>(service)};
    };
    return std::to_array<ReadCommand>({
        file(FileServices::SaveFile),
        file(FileServices::ListFile),
        whole(AlarmDataRead),
        whole(AlarmHistoryRead),
        whole(StatusRead),
        one(StatusRead),
        whole(ExecutingJobRead),
        whole(AxisConfigurationRead),
        whole(RobotPositionRead),
        whole(PositionErrorRead),
        whole(TorqueRead),
        one(IOData),
        one(RegisterData),
        one(ByteVariable),
        one(IntegerVariable),
        one(DoubleIntVariable),
        one(RealVariable),
        whole(RobotPositionVariable),
        whole(BasePositionVariable),
        whole(StationPositionVariable),
        whole(OperatingTimeRead),
        whole(SystemInformationRead),
        one(StringVariable),
        whole(UAPIPositionRead),
        whole(MotionTargetProgress),
        whole(ConvertJointAngleToCartesian),
        whole(ConvertCartesianToJointAngle),
        whole(ConvertPulseToJointAngle),
        whole(ConvertJointAngleToPulse),
        whole(SystemParameterRead),
        whole(JobStackRead),
    });
}();

static_assert(std::ranges::is_sorted(ReadCommands, {}, &ReadCommand::command));

/// Whether a request of this division, command and service changes nothing on the controller.
constexpr bool OnlyReads(Division division, CommandNumber command, std::uint8_t service) {
    return std::ranges::any_of(
        std::ranges::equal_range(ReadCommands, command, {}, &ReadCommand::command),
        [&](ReadCommand const& read) { return read.division == division && read.service == service; });
}

} // namespace harvlink
