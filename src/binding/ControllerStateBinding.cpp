#include "binding/Binding.h"

using namespace harvlink::InteropHelper;
using harvlink::Binding::As;
using harvlink::Binding::ControllerOf;
using harvlink::Binding::ReturnedTexts;

inline namespace harvlink_c {

IStatusInfo controller_state_interface_read_state(ControllerHandle handle, ControllerStateData* state) {
    return ToPlain(ControllerOf(handle).Status->ReadState(As<harvlink::ControllerStateData>(state)));
}

IStatusInfo controller_state_interface_read_system_information(ControllerHandle handle, SystemInfoId id,
                                                               ISystemInfoData* data) {
    harvlink::SystemInfoData read;
    harvlink::StatusInfo const status =
        ControllerOf(handle).Status->ReadSystemInformation(static_cast<harvlink::SystemInfoId>(id), read);
    ReturnedTexts texts(handle);
    *data = {texts.Copy(read.softwareVersion), texts.Copy(read.modelName)};
    return texts.Checked(ToPlain(status));
}

IStatusInfo controller_state_interface_read_operating_times(ControllerHandle handle, ControlGroupId group,
                                                            TimeType type, TimeData* data,
                                                            ApplicationNumber application) {
    return ToPlain(ControllerOf(handle).Status->ReadOperatingTimes(
        static_cast<harvlink::ControlGroupId>(group), static_cast<harvlink::TimeType>(type),
        As<harvlink::TimeData>(data), static_cast<harvlink::ApplicationNumber>(application)));
}

IStatusInfo controller_state_read_system_param(ControllerHandle handle, SystemParameterType type, int number,
                                               int* value) {
    return ToPlain(
        ControllerOf(handle).Status->ReadSystemParam(static_cast<harvlink::SystemParameterType>(type), number, *value));
}

IStatusInfo controller_state_group_read_system_param(ControllerHandle handle, SystemParameterType type, int number,
                                                     int group, int* value) {
    return ToPlain(ControllerOf(handle).Status->ReadSystemParam(static_cast<harvlink::SystemParameterType>(type),
                                                                number, group, *value));
}

} // namespace harvlink_c
