#include "simulator/arm/GroupAxes.h"

#include <algorithm>
#include <string_view>

#include "wire/WireInteger.h"

namespace harvlink::simulator {
namespace {

struct AxisKind {
    std::string_view letters;
    double pulsesPerUnit;
    AxisLimits limits;
    double maximumSpeed;
};

constexpr AxisKind RobotAxis{"SLURBTEW", 1000.0, {-180.0, 180.0}, 180.0};
constexpr AxisKind BaseAxis{"XYZ12345", 100.0, {0.0, 5000.0}, 1500.0};
constexpr AxisKind StationAxis{"12345678", 800.0, {-3600.0, 3600.0}, 180.0};

} // namespace

GroupAxes AxesOf(ControlGroup const& group) {
    bool const isRobot = group.id < ControlGroupId::B1;
    bool const isBase = !isRobot && group.id < ControlGroupId::S1;
    AxisKind const& kind = isRobot ? RobotAxis : isBase ? BaseAxis : StationAxis;
    GroupAxes axes{.count = std::min<std::size_t>(group.axes, MaxAxes),
                   .isLinear = isBase,
                   .isArm = isRobot && group.axes >= ArmAxes};
    for (std::size_t i = 0; i < axes.count; ++i) {
        bool const isOfArm = isRobot && i < ArmAxes;
        axes.letters[i] = kind.letters[i];
        axes.pulsesPerUnit[i] = isOfArm ? StandardArm.pulsesPerDegree[i] : kind.pulsesPerUnit;
        axes.limits[i] = isOfArm ? StandardArm.limits[i] : kind.limits;
        axes.maximumSpeed[i] = isOfArm ? StandardArm.maximumSpeed[i] : kind.maximumSpeed;
    }
    return axes;
}

bool GroupAxes::IsWithinLimits(AxisValues const& values) const {
    for (std::size_t i = 0; i < count; ++i) {
        if (!limits[i].Contains(values[i])) {
            return false;
        }
    }
    return true;
}

AxisValues GroupAxes::FromPulses(WireAxes const& pulses) const {
    AxisValues values{};
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = pulses[i] / pulsesPerUnit[i];
    }
    return values;
}

WireAxes GroupAxes::ToPulses(AxisValues const& values) const {
    WireAxes pulses{};
    for (std::size_t i = 0; i < count; ++i) {
        pulses[i] = ScaleToInt32(values[i], pulsesPerUnit[i]);
    }
    return pulses;
}

AxisValues GroupAxes::FromWire(WireAxes const& wire, AxisScaling const& scaling) const {
    AxisValues values = scaling.FromWire(wire);
    std::fill(values.begin() + static_cast<std::ptrdiff_t>(count), values.end(), 0.0);
    return values;
}

ArmAngles ArmAnglesOf(AxisValues const& values) {
    ArmAngles angles{};
    std::copy_n(values.begin(), ArmAxes, angles.begin());
    return angles;
}

AxisValues WithArmAngles(AxisValues const& values, ArmAngles const& angles) {
    AxisValues result = values;
    std::ranges::copy(angles, result.begin());
    return result;
}

} // namespace harvlink::simulator
