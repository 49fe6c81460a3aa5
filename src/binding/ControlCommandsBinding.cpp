#include "binding/Binding.h"

using namespace harvlink::InteropHelper;
using harvlink::Binding::ControllerOf;
using harvlink::Binding::Guarded;

inline namespace harvlink_c {

IStatusInfo control_commands_interface_SetServos(ControllerHandle handle, SignalStatus state) {
    return ToPlain(ControllerOf(handle).ControlCommands->SetServos(static_cast<harvlink::SignalStatus>(state)));
}

IStatusInfo control_commands_interface_SetHold(ControllerHandle handle, SignalStatus state) {
    return ToPlain(ControllerOf(handle).ControlCommands->SetHold(static_cast<harvlink::SignalStatus>(state)));
}

IStatusInfo control_commands_interface_SetCycleMode(ControllerHandle handle, CycleMode mode) {
    return ToPlain(ControllerOf(handle).ControlCommands->SetCycleMode(static_cast<harvlink::CycleMode>(mode)));
}

IStatusInfo control_commands_interface_DisplayStringToPendant(ControllerHandle handle, char const* text) {
    return Guarded(handle, [&] {
        return ControllerOf(handle).ControlCommands->DisplayStringToPendant(ConvertChar8ToString(text));
    });
}

IStatusInfo control_commands_interface_StartJob(ControllerHandle handle) {
    return ToPlain(ControllerOf(handle).ControlCommands->StartJob());
}

} // namespace harvlink_c
