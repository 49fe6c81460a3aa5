#include "simulator/arm/ArmGeometry.h"

namespace harvlink::simulator {

bool WithinLimits(ArmGeometry const& arm, ArmAngles const& angles) {
    for (std::size_t i = 0; i < ArmAxes; ++i) {
        if (!arm.limits[i].Contains(angles[i])) {
            return false;
        }
    }
    return true;
}

} // namespace harvlink::simulator
