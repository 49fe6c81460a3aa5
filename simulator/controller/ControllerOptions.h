#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "harvlink/ControllerVersion.h"
#include "simulator/faults/FaultPlan.h"
#include "simulator/model/ControlGroups.h"

namespace harvlink::simulator {

/// The limits of the time scale that a user may choose.
inline constexpr double SlowestTimeScale = 0.001;
inline constexpr double FastestTimeScale = 10'000.0;

/// The options of a virtual controller. They can't be changed after it was created.
struct ControllerOptions {
    ControllerVersion generation = ControllerVersion::VersionYA;
    int rs022 = 1; ///< 1: instance numbers of variables equal their indexes; 0: they are one higher
    std::vector<ControlGroup> groups{{ControlGroupId::R1, 6}}; ///< the first four are the motion slots
    std::filesystem::path filesFolder{}; ///< served instead of the generated files; empty: none
    std::uint32_t toolCount = 64; ///< tools are numbered from 0
    double timeScale = 1.0; ///< 0: time stands still until VirtualController::Advance
    FaultPlan faults{}; ///< the faults from the start; VirtualController::WithFaults changes them
};

} // namespace harvlink::simulator
