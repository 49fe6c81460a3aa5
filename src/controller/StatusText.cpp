#include <ostream>
#include <string_view>

#include "controller/StatusImplementation.h"

namespace harvlink {
namespace {

std::string_view TrueOrFalse(bool value) {
    return value ? "true" : "false";
}

} // namespace

std::string HelperFunction::GetCycleModeStringFromEnum(CycleMode mode) {
    switch (mode) {
    case CycleMode::Step:
        return "Step";
    case CycleMode::Cycle:
        return "Cycle";
    case CycleMode::Automatic:
        return "Automatic";
    default:
        return "";
    }
}

std::string HelperFunction::GetControlModeStringFromEnum(ControllerStateData::ControlMode mode) {
    switch (mode) {
    case ControllerStateData::ControlMode::Teach:
        return "Teach";
    case ControllerStateData::ControlMode::Play:
        return "Play";
    case ControllerStateData::ControlMode::Remote:
        return "Remote";
    default:
        return "";
    }
}

std::ostream& operator<<(std::ostream& stream, ControllerStateData const& state) {
    return stream << "Running Mode: " << HelperFunction::GetCycleModeStringFromEnum(state.cycleMode)
                  << "\nIs Running: " << TrueOrFalse(state.isRunning)
                  << "\nControl Mode: " << HelperFunction::GetControlModeStringFromEnum(state.controlMode)
                  << "\nIs Program Pendant Hold: " << TrueOrFalse(state.isProgramPendantHold)
                  << "\nIs Alarming: " << TrueOrFalse(state.isAlarming)
                  << "\nIs Erroring: " << TrueOrFalse(state.isErroring)
                  << "\nIs Servo On: " << TrueOrFalse(state.isServoOn);
}

std::ostream& operator<<(std::ostream& stream, SystemInfoData const& data) {
    return stream << "Software Version: " << data.softwareVersion << "\nModel Name: " << data.modelName;
}

std::ostream& operator<<(std::ostream& stream, ElapsedTime const& time) {
    return stream << time.hours << " Hours : " << time.minutes << " Minutes : " << time.seconds << " Seconds.";
}

std::ostream& operator<<(std::ostream& stream, TimeData const& data) {
    return stream << "Start Time Epoch: " << data.startTimeEpoch << "\nElapsed Time: " << data.elapsedTime;
}

} // namespace harvlink
