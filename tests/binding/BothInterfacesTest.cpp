#include "harvlink/harvlink.h"

using namespace harvlink; // as programs do, even before the other interface; names that both have are qualified

#include <sstream>
#include <type_traits>

#include <gtest/gtest.h>

#include "harvlink/harvlink_c.h"

namespace {

static_assert(std::is_abstract_v<QuorvanController> && std::is_abstract_v<VariablesInterface>);
static_assert(!std::is_same_v<::CycleMode, harvlink::CycleMode>);

TEST(BothInterfaces, EveryTextFormIsReachedFromTheOneHeader) {
    std::ostringstream text;
    text << std::array<double, 8>{1, 2.5} << '\n' << SpeedStruct{1, 2, 3} << '\n' << UAPICoordType::UAPITool;
    EXPECT_EQ(text.str(), "1, 2.5, 0, 0, 0, 0, 0, 0\n"
                          "Linear Speed: 2 mm/sec\nJoint Speed: 1%\nAngular Speed: 3 deg/sec\nTool");
}

/// Stands for an implementation of the caller's own, such as one for tests.
struct OtherKinematics : KinematicsInterface {
    StatusInfo ConvertPosition(harvlink::ControlGroupId, harvlink::PositionData&, harvlink::KinematicConversions,
                               harvlink::PositionData&) override {
        return {};
    }
    StatusInfo ConvertPositionFromCartesian(harvlink::ControlGroupId, harvlink::PositionData&,
                                            harvlink::KinematicConversions, harvlink::KinematicType,
                                            std::array<double, 8> const&, harvlink::PositionData&) override {
        return {};
    }
};

TEST(BothInterfaces, KinematicArgumentsAreCheckedThroughTheInterface) {
    using enum harvlink::KinematicType;
    OtherKinematics other;
    EXPECT_EQ(other.CheckInputCartPosParams(Delta, false).StatusCode, 0);
    EXPECT_EQ(other.CheckInputCartPosParams(KinematicFromSystem, true).StatusCode, 0x20012);
}

} // namespace
