#include "binding/Binding.h"

using namespace harvlink::InteropHelper;
using harvlink::Binding::As;
using harvlink::Binding::ControllerOf;

namespace {

harvlink::MotionManagerInterface& MotionOf(ControllerHandle handle) {
    return *ControllerOf(handle).MotionManager;
}

/// `first` goes by reference, so that it can be a circular motion; the others are copied.
template <typename... Others>
IStatusInfo AddPoints(ControllerHandle handle, Motion const* first, Others const*... others) {
    return ToPlain(MotionOf(handle).AddPointToTrajectory(As<harvlink::Motion>(first), As<harvlink::Motion>(others)...));
}

} // namespace

inline namespace harvlink_c {

IStatusInfo motion_manager_AddPointToTrajectory(ControllerHandle handle, Motion const* first) {
    return AddPoints(handle, first);
}

IStatusInfo motion_manager_Add2PointsToTrajectory(ControllerHandle handle, Motion const* first, Motion const* second) {
    return AddPoints(handle, first, second);
}

IStatusInfo motion_manager_Add3PointsToTrajectory(ControllerHandle handle, Motion const* first, Motion const* second,
                                                  Motion const* third) {
    return AddPoints(handle, first, second, third);
}

IStatusInfo motion_manager_Add4PointsToTrajectory(ControllerHandle handle, Motion const* first, Motion const* second,
                                                  Motion const* third, Motion const* fourth) {
    return AddPoints(handle, first, second, third, fourth);
}

double motion_manager_GetMotionTargetProgress(ControllerHandle handle, ControlGroupId group, IStatusInfo* status) {
    harvlink::StatusInfo result;
    double const progress =
        MotionOf(handle).GetMotionTargetProgress(static_cast<harvlink::ControlGroupId>(group), result);
    *status = ToPlain(result);
    return progress;
}

IStatusInfo motion_manager_MotionStart(ControllerHandle handle) {
    return ToPlain(MotionOf(handle).MotionStart());
}

IStatusInfo motion_manager_MotionStop(ControllerHandle handle, bool clearTrajectory) {
    return ToPlain(MotionOf(handle).MotionStop(clearTrajectory));
}

IStatusInfo motion_manager_ClearAllTrajectory(ControllerHandle handle) {
    return ToPlain(MotionOf(handle).ClearAllTrajectory());
}

} // namespace harvlink_c
