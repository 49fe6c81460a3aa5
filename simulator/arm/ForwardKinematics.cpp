#include "simulator/arm/ForwardKinematics.h"

namespace harvlink::simulator {

Rotation const& FlangeMounting() {
    static Rotation const mounting{{0.0, 0.0, 1.0, 0.0, -1.0, 0.0, 1.0, 0.0, 0.0}};
    return mounting;
}

Frame FlangeOf(ArmGeometry const& arm, ArmAngles const& angles) {
    auto const& [s, l, u, r, b, t] = angles;
    Frame const shoulder = Frame{Rotation::AboutZ(s), {}} * Translation(arm.shoulderOffset, 0.0, arm.shoulderHeight);
    Frame const elbow = shoulder * Frame{Rotation::AboutY(l), {}} * Translation(0.0, 0.0, arm.upperArm);
    Frame const wrist = elbow * Frame{Rotation::AboutY(-u), {}} * Translation(arm.forearm, 0.0, arm.elbowOffset);
    Rotation const hand = Rotation::AboutX(r) * Rotation::AboutY(-b) * Rotation::AboutX(t);
    return wrist * Frame{hand, {}} * Frame{FlangeMounting(), {arm.hand, 0.0, 0.0}};
}

} // namespace harvlink::simulator
