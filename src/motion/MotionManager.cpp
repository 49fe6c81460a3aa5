#include "motion/MotionManager.h"

#include <algorithm>
#include <chrono>

#include "wire/HelperFunction.h"
#include "wire/SystemParameterMessage.h"

namespace harvlink {
namespace {

constexpr int groupDoesNotExist = 65504;
constexpr int bufferFull = -49934480; // "Timeout" of the motion table, folded

constexpr std::uint32_t motionSlotParameterType = 11;
constexpr std::array motionSlotParameters{33, 34, 35, 36};

StatusInfo TooOld() {
    return StatusInformation(ErrorStatusCodes::UnsupportedOnThisController);
}

StatusInfo InvalidGroupOfTarget(std::string_view ordinal) {
    return StatusInformation(InvalidControlGroup,
                             "Invalid control group id for the " + std::string(ordinal) + " target submitted.");
}

/// The controller counts robots, bases and stations on without gaps.
ControlGroupId GroupOfContinuousNumber(std::int32_t number) {
    if (number < 9) {
        return static_cast<ControlGroupId>(number);
    }
    return static_cast<ControlGroupId>(static_cast<std::uint32_t>(number) + (number <= 16 ? 2U : 4U));
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
    id = {};
    SytemParamMsgOut request{motionSlotParameterType, 0, static_cast<std::uint32_t>(parameterNumber)};
    StatusInfo status;
    auto const reply = SendMotionCommand<SytemParamMsgOut, std::int32_t>(request, CommandNumber::SystemParameterRead,
                                                                         status, ServiceReadAll);
    if (status.StatusCode == 0) {
        id = GroupOfContinuousNumber(reply.payload);
    }
    return status;
}

StatusInfo MotionManager::MakeCtrlGroupNumberMap() {
    StatusInfo status;
    for (std::size_t slot = 0; slot < MotionSlots; ++slot) {
        ControlGroupId id{};
        status = GetCtrlGroupIds(motionSlotParameters[slot], id);
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
    std::int32_t const id = targetId;
    targetId = id > maximumTargetId ? 0 : id + 1;

    if (!SetTargetProfile(step, status)) {
        return status;
    }
    MotionTargetSend const message{static_cast<std::uint32_t>(step.groups.to_ulong()), step.targets};
    status = SendFolded(message, CommandNumber::MotionSendTarget);
    while (status.StatusCode == bufferFull) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        status = SendFolded(message, CommandNumber::MotionSendTarget);
    }
    return status;
}

StatusInfo MotionManager::MotionStart() {
    if (!IsSupported()) {
        return TooOld();
    }
    StatusInfo status = SendFolded(std::int32_t{0}, CommandNumber::MotionStart);
    if (status.StatusCode == 0) {
        StartMonitorTrajectoryThread();
    }
    return status;
}

StatusInfo MotionManager::MotionStop(bool clearTrajectory) {
    if (!IsSupported()) {
        return TooOld();
    }
    StatusInfo status = SendFolded(std::int32_t{0}, CommandNumber::MotionStop);
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
    return SendFolded(MotionClearGroupTargets{group}, CommandNumber::MotionClearTargets);
}

double MotionManager::GetMotionTargetProgress(ControlGroupId group, StatusInfo& status) {
    if (!IsSupported()) {
        status = TooOld();
        return 0.0;
    }
    TargetControlGroup slot = groupNumberMap.GetGroup(group);
    if (slot == TargetControlGroup::GroupNotFound) {
        status = StatusInformation(groupDoesNotExist, "Group does not exist.");
        return 0.0;
    }
    auto const reply = SendMotionCommand<TargetControlGroup, double>(slot, CommandNumber::MotionTargetProgress, status,
                                                                     ServiceReadAll);
    FoldMotionStatus(status);
    return status.StatusCode == 0 ? reply.payload : 0.0;
}

StatusInfo MotionManager::SetAlarm(std::string const& text, unsigned char subCode) {
    SetAlarmMsg message{.subCode = subCode};
    std::copy_n(text.begin(), std::min(text.size(), message.text.size() - 1), message.text.begin());
    StatusInfo status;
    SendMotionCommand<SetAlarmMsg, std::uint32_t>(message, CommandNumber::SetAlarm, status, ServiceWriteAll);
    return status;
}

} // namespace harvlink
