#include "motion/MotionManager.h"

#include <mutex>

#include "motion/MotionRequests.h"
#include "motion/TargetWait.h"
#include "wire/Guarded.h"
#include "wire/HelperFunction.h"

namespace harvlink {
namespace {

constexpr int groupDoesNotExist = 65504;

StatusInfo TooOld() {
    return StatusInformation(ErrorStatusCodes::UnsupportedOnThisController);
}

StatusInfo InvalidGroupOfTarget(std::string_view ordinal) {
    return StatusInformation(InvalidControlGroup,
                             "Invalid control group id for the " + std::string(ordinal) + " target submitted.");
}

/// Whether the stop has certainly not acted: the controller refused it, or it was not sent.
bool IsRefusal(StatusInfo const& status) {
    constexpr int firstOfLibrary = 0x10000; // the controller's codes lie below, folded ones too
    return status.StatusCode != 0 && (status.StatusCode < firstOfLibrary ||
                                      status.StatusCode == static_cast<int>(ErrorStatusCodes::AccessDenied));
}

template <typename Mutex>
std::unique_lock<Mutex> LockIf(bool isNeeded, Mutex& mutex) {
    return isNeeded ? std::unique_lock(mutex) : std::unique_lock(mutex, std::defer_lock);
}

} // namespace

MotionManagerInterface* MotionManagerPtr(NetworkManager* networkManager) {
    return new MotionManager(networkManager);
}

MotionManager::MotionManager(NetworkManager* manager) : networkManager(manager) {
    MakeCtrlGroupNumberMap();
    if (networkManager->Policy().ClearsTargets()) {
        ClearAllTrajectory();
    }
}

/// The waits end first, so that nobody looks at what goes.
MotionManager::~MotionManager() {
    progress.Close();
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
    StepNumber number = 0;
    return AddPointToTrajectory(number, first, second, third, fourth);
}

StatusInfo MotionManager::AddPointToTrajectory(std::uint64_t& stepNumber, Motion const& first,
                                               std::optional<Motion> second, std::optional<Motion> third,
                                               std::optional<Motion> fourth) {
    stepNumber = 0;
    return Guarded(*networkManager, [&] {
        if (!IsSupported()) {
            return TooOld();
        }
        if (networkManager->Policy().access != Access::Full) {
            return Denied(Access::Full); // what is queued could never leave
        }
        MotionStep step;
        StatusInfo status = AddTargets(step, first, {second, third, fourth});
        return status.StatusCode == 0 ? Queue(step, stepNumber) : status;
    });
}

/// The status comes first: when the step is in the queue, nothing may fail any more.
StatusInfo MotionManager::Queue(MotionStep const& step, StepNumber& stepNumber) {
    StatusInfo status = StatusInformation(ErrorStatusCodes::Ok, "Point added to trajectory.");
    {
        std::lock_guard const lock(trajectoryMutex);
        progress.MakeRoom();
        stepNumber = trajectory.PushBack(step); // last, as the monitor then waits for the lock
    }
    progress.Queued(stepNumber);
    if (isHoldDue) {
        CountHold();
    }
    return status;
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

StatusInfo MotionManager::MotionStart() {
    return Guarded(*networkManager, [&] { return IsSupported() ? Start() : TooOld(); });
}

/// Under Rule::BoundedClose starts and stops follow each other: of two at the same time, the controller and the hold agree on
/// which was the later one.
StatusInfo MotionManager::Start() {
    auto const order = LockIf(Enforces(Rule::BoundedClose), startStopMutex);
    StatusInfo status = CarryOut(*networkManager, MotionStartRequest{});
    if (status.StatusCode == 0) {
        isHoldDue = false;
        progress.Release();
        StartMonitorTrajectoryThread();
    }
    return status;
}

StatusInfo MotionManager::MotionStop(bool clearTrajectory) {
    return Guarded(*networkManager, [&] { return IsSupported() ? Stop(clearTrajectory) : TooOld(); });
}

/// As designed the monitor is not touched. Under Rule::BoundedClose no target leaves after the stop, until the next start: nor
/// if the answer to it is lost, as the controller may stand.
StatusInfo MotionManager::Stop(bool clearTrajectory) {
    bool const holds = Enforces(Rule::BoundedClose);
    auto const order = LockIf(holds, startStopMutex);
    bool const wasHeld = holds && progress.Hold();
    StatusInfo status = Guarded(*networkManager, [&] { return SendStop(); });
    bool const isCleared = status.StatusCode == 0 && clearTrajectory;
    bool const isRefused = IsRefusal(status);
    if (isCleared) {
        ClearAllTrajectory();
    }
    if (!isRefused) {
        isHoldDue = !isCleared && progress.HasMonitor();
    }
    if (isHoldDue && !trajectory.IsEmpty()) {
        CountHold();
    }
    if (holds && (isCleared || (isRefused && !wasHeld))) {
        progress.Release();
    }
    return status;
}

/// Counts a stop once: when it finds steps in the queue, or when the first is queued behind it.
void MotionManager::CountHold() {
    if (isHoldDue.exchange(false)) {
        networkManager->Refuses(Rule::BoundedClose);
    }
}

StatusInfo MotionManager::SendStop() {
    auto const lock = LockIf(Enforces(Rule::BoundedClose), targetsMutex); // behind the target that is under way
    return CarryOut(*networkManager, MotionStopRequest{});
}

StatusInfo MotionManager::ClearAllTrajectory() {
    return Guarded(*networkManager, [&] { return IsSupported() ? Clear() : TooOld(); });
}

StatusInfo MotionManager::Clear() {
    if (trajectory.IsEmpty()) {
        return SendClear(MotionClearGroupTargets::AllGroups);
    }
    // Held during the exchange: no point comes in between the two clears.
    std::lock_guard const lock(trajectoryMutex);
    trajectory.Clear();
    progress.Withdraw(trajectory.LastNumber());
    return SendClear(MotionClearGroupTargets::AllGroups);
}

bool MotionManager::ClearTrajectory(TargetControlGroup group, StatusInfo& status) {
    status = SendClear(static_cast<std::int32_t>(group));
    return status.StatusCode == 0;
}

StatusInfo MotionManager::SendClear(std::int32_t group) {
    std::lock_guard const lock(targetsMutex);
    progress.CountLost(); // until it is known that all were cleared
    StatusInfo status = CarryOut(*networkManager, ClearTargetsRequest{{group}});
    if (status.StatusCode == 0 && group == MotionClearGroupTargets::AllGroups) {
        progress.TargetsCleared();
    }
    return status;
}

StatusInfo MotionManager::GetTrajectoryState(TrajectoryState& state) {
    return Guarded(*networkManager, state, [&] {
        state = progress.State();
        return IsSupported() ? StatusInformation(ErrorStatusCodes::Ok) : TooOld();
    });
}

StatusInfo MotionManager::WaitForTarget(std::uint64_t stepNumber, unsigned timeoutMilliseconds, double tolerance) {
    return Guarded(*networkManager, [&] {
        return IsSupported() ? TargetWait(*networkManager, progress, groupNumberMap, stepNumber, timeoutMilliseconds)
                                   .UntilThere(tolerance)
                             : TooOld();
    });
}

StatusInfo MotionManager::WaitUntilSent(std::uint64_t stepNumber, unsigned timeoutMilliseconds) {
    return Guarded(*networkManager, [&] {
        return IsSupported()
                   ? TargetWait(*networkManager, progress, groupNumberMap, stepNumber, timeoutMilliseconds).UntilSent()
                   : TooOld();
    });
}

double MotionManager::GetMotionTargetProgress(ControlGroupId group, StatusInfo& status) {
    double reached = 0.0;
    status = Guarded(*networkManager, reached, [&] { return ReadTargetProgress(group, reached); });
    return reached;
}

StatusInfo MotionManager::ReadTargetProgress(ControlGroupId group, double& reached) {
    if (!IsSupported()) {
        return TooOld();
    }
    TargetControlGroup const slot = groupNumberMap.GetGroup(group);
    if (slot == TargetControlGroup::GroupNotFound) {
        return StatusInformation(groupDoesNotExist, "Group does not exist.");
    }
    return CarryOut(*networkManager, TargetProgressRequest{slot}, reached);
}

StatusInfo MotionManager::SetAlarm(std::string_view text, unsigned char subCode) {
    return CarryOut(*networkManager, SetAlarmRequest(text, subCode));
}

} // namespace harvlink
