#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "harvlink/PositionData.h"
#include "motion/GroupNumberMap.h"
#include "motion/TrajectoryProgress.h"
#include "wire/NetworkManager.h"

namespace harvlink {

/// Waits for one step, on the thread of the caller. What it asks the controller only reads.
class TargetWait {
public:
    TargetWait(NetworkManager& engine, TrajectoryProgress& trajectoryProgress, GroupNumberMap const& map,
               StepNumber stepNumber, unsigned timeoutMilliseconds);

    /// Until the controller has taken the step. Asks the controller nothing.
    StatusInfo UntilSent();

    /// Until every group of the step is within `tolerance` of its target, or has gone on from there.
    StatusInfo UntilThere(double tolerance);

private:
    using Result = std::optional<StatusInfo>; ///< nothing: go on waiting

    Result LookAtStep(double tolerance);
    Result LookAtGroups(StepRecord const& record, double tolerance);
    Result LookAtTarget(StepRecord const& record, std::size_t slot, double tolerance);
    Result LookAtCount(StepRecord const& record, std::size_t slot);
    Result LookAtState();
    Result LookAtAlarms();
    StatusInfo ReadPosition(SentTarget const& target, ControlGroupId group, PositionData& position);
    StatusInfo OutcomeOf(StepRecord const& record) const;
    StatusInfo Unknown() const;
    StatusInfo TimedOut(std::string_view what) const;

    NetworkManager& networkManager;
    TrajectoryProgress& progress;
    TrajectoryProgress::Visit const visit;
    GroupNumberMap const& groupNumberMap;
    StepNumber number;
    std::string step; ///< its name in texts
    unsigned timeout;
    TrajectoryProgress::Clock::time_point end;
};

} // namespace harvlink
