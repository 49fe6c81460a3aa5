#include <cstring>

#include "binding/Binding.h"

using namespace harvlink::InteropHelper;
using harvlink::Binding::As;
using harvlink::Binding::ControllerOf;

inline namespace harvlink_c {

IStatusInfo control_group_interface_read_position_data(ControllerHandle handle, ControlGroupId group,
                                                       CoordinateType type, unsigned char userCoordinateNumber,
                                                       unsigned char toolNumber, PositionData* position) {
    return ToPlain(ControllerOf(handle).ControlGroup->ReadPositionData(
        static_cast<harvlink::ControlGroupId>(group), static_cast<harvlink::CoordinateType>(type), userCoordinateNumber,
        toolNumber, As<harvlink::PositionData>(position)));
}

IStatusInfo control_group_interface_read_axis_configuration(ControllerHandle handle, ControlGroupId group,
                                                            char* configuration) {
    std::array<char, 8> axes{};
    harvlink::StatusInfo const status =
        ControllerOf(handle).ControlGroup->ReadAxisConfiguration(static_cast<harvlink::ControlGroupId>(group), axes);
    std::memcpy(configuration, axes.data(), axes.size());
    return ToPlain(status);
}

IStatusInfo control_group_interface_read_position_error(ControllerHandle handle, ControlGroupId group,
                                                        PositionErrorData* data) {
    return ToPlain(ControllerOf(handle).ControlGroup->ReadPositionError(static_cast<harvlink::ControlGroupId>(group),
                                                                        As<harvlink::PositionErrorData>(data)));
}

IStatusInfo control_group_interface_read_torque_data(ControllerHandle handle, ControlGroupId group, TorqueData* data) {
    return ToPlain(ControllerOf(handle).ControlGroup->ReadTorqueData(static_cast<harvlink::ControlGroupId>(group),
                                                                     As<harvlink::TorqueData>(data)));
}

} // namespace harvlink_c
