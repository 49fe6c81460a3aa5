#pragma once

#include "harvlink/ConnectOptions.h"
#include "wire/OnlyReads.h"

namespace harvlink {

/// All that change something on the controller other than motion by targets, in the order of their commands. A job that
/// starts moves the arm too, but along points that were taught; what full access adds is motion that a program makes up.
inline constexpr auto OperatingCommands = [] {
    using enum CommandNumber;
    auto const whole = [](CommandNumber command) { return PortCommand(command, ServiceWriteAll); };
    auto const one = [](CommandNumber command) { return PortCommand(command, ServiceWriteOne); };
    auto const file = [](FileServices service) { return PortCommand(service); };
    return std::to_array<PortCommand>({
        file(FileServices::DeleteFile),
        file(FileServices::LoadFile),
        one(IOData),
        one(RegisterData),
        one(ByteVariable),
        one(IntegerVariable),
        one(DoubleIntVariable),
        one(RealVariable),
        whole(RobotPositionVariable),
        whole(BasePositionVariable),
        whole(StationPositionVariable),
        one(AlarmReset),
        one(HoldOrServo),
        one(CycleModeSwitch),
        one(PendantMessage),
        one(JobStart),
        whole(JobSelect),
        one(StringVariable),
        whole(MotionStop), // on purpose: whoever may operate a machine may always stop it
        whole(MotionClearTargets), // and take away what it would still move to
        whole(UAPIWriteIO),
        whole(SetAlarm), // raises an alarm, which stops rather than moves
    });
}();

static_assert(std::ranges::is_sorted(OperatingCommands, {}, &PortCommand::command));

/// The access that a request takes. What no table lists takes all of it.
constexpr Access MinimumAccess(Division division, CommandNumber command, std::uint8_t service) {
    PortCommand const asked(division, command, service);
    if (Lists(ReadCommands, asked)) {
        return Access::Observe;
    }
    return Lists(OperatingCommands, asked) ? Access::Operate : Access::Full;
}

} // namespace harvlink
