#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "wire/Packets.h"

namespace harvlink {

/// A command and service on the port of a division.
struct PortCommand {
    Division division;
    CommandNumber command; ///< 0 on the file port, where the service alone decides
    std::uint8_t service;

    constexpr PortCommand(CommandNumber number, std::uint8_t commandService)
        : division(Division::RobotControl), command(number), service(commandService) {}
    constexpr explicit PortCommand(FileServices fileService)
        : division(Division::FileControl), command{}, service(static_cast<std::uint8_t>(fileService)) {}
    constexpr PortCommand(Division port, CommandNumber number, std::uint8_t commandService)
        : division(port), command(number), service(commandService) {}

    constexpr bool operator==(PortCommand const&) const = default;
};

/// All that change nothing on the controller, in the order of their commands. Whatever is not in here may write, start or
/// move something. Of a conversion the controller only computes.
inline constexpr auto ReadCommands = [] {
    using enum CommandNumber;
    auto const whole = [](CommandNumber command) { return PortCommand(command, ServiceReadAll); };
    auto const one = [](CommandNumber command) { return PortCommand(command, ServiceReadOne); };
    auto const file = [](FileServices service) { return PortCommand(service); };
    return std::to_array<PortCommand>({
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

/// Whether a table that is sorted by command has the command.
template <std::size_t size>
constexpr bool Lists(std::array<PortCommand, size> const& table, PortCommand const& asked) {
    // Not equal_range: its subrange does not compile with clang 14 and this standard library.
    auto const* row = std::ranges::lower_bound(table, asked.command, {}, &PortCommand::command);
    for (; row != table.end() && row->command == asked.command; ++row) {
        if (*row == asked) {
            return true;
        }
    }
    return false;
}

static_assert(std::ranges::is_sorted(ReadCommands, {}, &PortCommand::command));

/// Whether a request of this division, command and service changes nothing on the controller.
constexpr bool OnlyReads(Division division, CommandNumber command, std::uint8_t service) {
    return Lists(ReadCommands, {division, command, service});
}

} // namespace harvlink
