#include <algorithm>

#include "binding/Binding.h"

using namespace harvlink::InteropHelper;
using harvlink::Binding::As;
using harvlink::Binding::ControllerOf;

// The caller's records are passed straight through: one that is source and result is zeroed before it is read.

inline namespace harvlink_c {

IStatusInfo kinematics_interface_ConvertPosition(ControllerHandle handle, ControlGroupId group, PositionData* source,
                                                 KinematicConversions conversion, PositionData* result) {
    return ToPlain(ControllerOf(handle).Kinematics->ConvertPosition(
        static_cast<harvlink::ControlGroupId>(group), As<harvlink::PositionData>(source),
        static_cast<harvlink::KinematicConversions>(conversion), As<harvlink::PositionData>(result)));
}

IStatusInfo kinematics_interface_ConvertPositionFromCartesian(ControllerHandle handle, ControlGroupId group,
                                                              PositionData* source, KinematicConversions conversion,
                                                              KinematicType type, double const* previousAngles,
                                                              PositionData* result) {
    std::array<double, 8> angles{};
    std::copy_n(previousAngles, angles.size(), angles.begin());
    return ToPlain(ControllerOf(handle).Kinematics->ConvertPositionFromCartesian(
        static_cast<harvlink::ControlGroupId>(group), As<harvlink::PositionData>(source),
        static_cast<harvlink::KinematicConversions>(conversion), static_cast<harvlink::KinematicType>(type), angles,
        As<harvlink::PositionData>(result)));
}

} // namespace harvlink_c
