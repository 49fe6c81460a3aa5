#include "motion/MotionManager.h"

#include <chrono>

#include "motion/MotionRequests.h"
#include "wire/HelperFunction.h"

namespace harvlink {
namespace {

constexpr int groupDoesNotExist = 65504;
constexpr int bufferFull = -49934480; // "Timeout" of the motion table, folded

StatusInfo TooOld() {
    return StatusInformation(ErrorStatusCodes::UnsupportedOnThisController);
}

StatusInfo InvalidGroupOfTarget(std::string_view ordinal) {
    return StatusInformation(InvalidControlGroup,
                             "Invalid control group id for the " + std::string(ordinal) + " target submitted.");
}

} // namespace

MotionManagerInterface* MotionManagerPtr(NetworkManager* networkManager) {
    return new MotionManager(networkManager);
}

MotionManager::MotionManager(NetworkManager* manager) : networkManager(manager) {
    MakeCtrlGroupNumberMap();
    ClearAllTrajectory();
}

/// Compared unsigned, on purpose: unlike for conversions, an unknown generation counts as new here.
bool MotionManager::IsSupported() const {
    return HelperFunction::CheckUAPICompatible(networkManager->controllerVersion);
}

StatusInfo MotionManager::GetCtrlGroupIds(int parameterNumber, ControlGroupId& id) {
    return CarryOut(*networkManager, MotionSlotRequest(parameterNumber), id);
}

StatusInfo MotionManager::MakeCtrlGroupNumberMap() {
    StatusInfo status;
    for (std::size_t slot = 0; slot < MotionSlots; ++slot) {
        ControlGroupId id{};
        status = GetCtrlGroupIds(MotionSlotParameters[slot], id);
        if (status.StatusCode != 0 || id <= ControlGroupId{}) {
            break;
        }
        groupNumberMap.groups[slot] = id;
    }
    return status;
}

StatusInfo MotionManager::AddPointToTrajectory(Motion const& first, std::optional<Motion> second,
                                               std::optional<Motion> third, std::optional<Motion> fourth) {
    if (!IsSupported()) {
        return TooOld();
    }
    MotionStep step;
    StatusInfo status = AddTargets(step, first, {second, third, fourth});
    if (status.StatusCode != 0) {
        return status;
    }
    std::lock_guard const lock(trajectoryMutex);
    trajectory.PushBack(step);
    return StatusInformation(ErrorStatusCodes::Ok, "Point added to trajectory.");
}

StatusInfo MotionManager::AddTargets(MotionStep& step, Motion const& first,
                                     std::array<std::optional<Motion>, 3> const& others) {
    constexpr std::array<std::string_view, 3> ordinals{"second", "third", "fourth"};
    TargetControlGroup const group = groupNumberMap.GetGroup(first);
    if (group == TargetControlGroup::GroupNotFound) {
        return InvalidGroupOfTarget("first");
    }
    StatusInfo status;
    if (!step.SetTarget(first, group, status)) {
        return status;
    }
    for (std::size_t i = 0; i < others.size(); ++i) {
        if (!others[i]) {
            continue;
        }
        // A motion that came by value ends at its position: a circle gets a mid-point of zeros.
        CircularMotion const motion{*others[i], {}};
        if (!step.SetTarget(motion, groupNumberMap, status)) {
            return status.StatusCode == InvalidControlGroup ? InvalidGroupOfTarget(ordinals[i]) : status;
        }
    }
    return status;
}

StatusInfo MotionManager::SendTarget(MotionStep const& step) {
    StatusInfo status = StatusInformation(ErrorStatusCodes::Ok);
    if (!SetTargetProfile(step, status)) {
        return status;
    }
    SendTargetRequest const request{{static_cast<std::uint32_t>(step.groups.to_ulong()), step.targets}};
    status = CarryOut(*networkManager, request);
    while (status.StatusCode == bufferFull) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        status = CarryOut(*networkManager, request);
    }
    return status;
}

StatusInfo MotionManager::MotionStart() {
    if (!IsSupported()) {
        return TooOld();
    }
    StatusInfo status = CarryOut(*networkManager, MotionStartRequest{});
    if (status.StatusCode == 0) {
        StartMonitorTrajectoryThread();
    }
    return status;
}

StatusInfo MotionManager::MotionStop(bool clearTrajectory) {
    if (!IsSupported()) {
        return TooOld();
    }
    StatusInfo status = CarryOut(*networkManager, MotionStopRequest{});
    if (status.StatusCode == 0 && clearTrajectory) {
        ClearAllTrajectory();
    }
    return status;
}

StatusInfo MotionManager::ClearAllTrajectory() {
    if (!IsSupported()) {
        return TooOld();
    }
    if (trajectory.IsEmpty()) {
        return SendClear(MotionClearGroupTargets::AllGroups);
    }
    // Held during the exchange: no point comes in between the two clears.
    std::lock_guard const lock(trajectoryMutex);
    trajectory.Clear();
    return SendClear(MotionClearGroupTargets::AllGroups);
}

bool MotionManager::ClearTrajectory(TargetControlGroup group, StatusInfo& status) {
    status = SendClear(static_cast<std::int32_t>(group));
    return status.StatusCode == 0;
}

StatusInfo MotionManager::SendClear(std::int32_t group) {
    return CarryOut(*networkManager, ClearTargetsRequest{{group}});
}

double MotionManager::GetMotionTargetProgress(ControlGroupId group, StatusInfo& status) {
    if (!IsSupported()) {
        status = TooOld();
        return 0.0;
    }
    TargetControlGroup const slot = groupNumberMap.GetGroup(group);
    if (slot == TargetControlGroup::GroupNotFound) {
        status = StatusInformation(groupDoesNotExist, "Group does not exist.");
        return 0.0;
    }
    double progress = 0.0;
    status = CarryOut(*networkManager, TargetProgressRequest{slot}, progress);
    return progress;
}

StatusInfo MotionManager::SetAlarm(std::string const& text, unsigned char subCode) {
    return CarryOut(*networkManager, SetAlarmRequest(text, subCode));
}

} // namespace harvlink
