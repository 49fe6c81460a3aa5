#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>
#include <type_traits>

#include "harvlink/MotionManagerInterface.h"
#include "motion/GroupNumberMap.h"
#include "motion/MotionMessages.h"
#include "motion/MotionRequests.h"
#include "motion/MotionStep.h"
#include "motion/TrajectoryProgress.h"
#include "motion/TrajectoryQueue.h"
#include "wire/NetworkManager.h"

namespace harvlink {

/// Queues motion steps, turns each into the series of commands that the controller expects, and feeds them to it from a
/// thread of its own, the trajectory monitor.
///
/// Locks, in this order, as LockRank has it: `startStopMutex`, `trajectoryMutex`, `targetsMutex`, those of an exchange. The
/// monitor holds neither of the first two while it sends. The cached profiles belong to the thread that calls SendTarget.
///
/// Three rules of the connection change what the monitor does: IdleMonitor, SentStep and BoundedClose.
class MotionManager final : public MotionManagerInterface {
public:
    /// Asks the controller for its motion slots and, if the policy says so, clears its targets. Failures are dropped: there are fewer slots then.
    explicit MotionManager(NetworkManager* manager);
    MotionManager(MotionManager const&) = delete;
    MotionManager& operator=(MotionManager const&) = delete;
    ~MotionManager() override;

    StatusInfo AddPointToTrajectory(Motion const& first, std::optional<Motion> second, std::optional<Motion> third,
                                    std::optional<Motion> fourth) override;
    double GetMotionTargetProgress(ControlGroupId group, StatusInfo& status) override;
    StatusInfo MotionStart() override;
    StatusInfo MotionStop(bool clearTrajectory) override;
    StatusInfo ClearAllTrajectory() override;
    StatusInfo GetTrajectoryState(TrajectoryState& state) override;
    StatusInfo AddPointToTrajectory(std::uint64_t& stepNumber, Motion const& first, std::optional<Motion> second,
                                    std::optional<Motion> third, std::optional<Motion> fourth) override;
    StatusInfo WaitForTarget(std::uint64_t stepNumber, unsigned timeoutMilliseconds, double tolerance) override;
    StatusInfo WaitUntilSent(std::uint64_t stepNumber, unsigned timeoutMilliseconds) override;

    /// One exchange. `status` is that of the reply, unfolded.
    template <typename In, typename Out>
    IncomingPacket<Out> SendMotionCommand(In& payload, CommandNumber command, StatusInfo& status,
                                          unsigned char service) {
        IncomingPacket<Out> incoming;
        OutgoingPacket<std::remove_const_t<In>> outgoing;
        outgoing.header.payloadSize = sizeof(In);
        outgoing.subHeader = {command, 0, FixedField::WholeRecord, service};
        outgoing.payload = payload;
        status = networkManager->SendAndReceive(outgoing, incoming, std::nullopt, true);
        return incoming;
    }

    /// Sends the settings that changed, then the target, and the target again every millisecond while the controller has
    /// no room for it.
    StatusInfo SendTarget(MotionStep const& step);
    bool SetTargetProfile(MotionStep const& step, StatusInfo& status);

    /// The cached setters: each sends only what differs from what was last sent for the group, and remembers it if the
    /// controller took it. False if it did not.
    bool SetTargetCoords(TargetProfile const& profile, TargetControlGroup group, StatusInfo& status);
    bool SetTargetSpeed(TargetProfile const& profile, TargetControlGroup group, MoveInterpolationType type,
                        StatusInfo& status);
    bool SetTargetConfig(TargetProfile const& profile, TargetControlGroup group, StatusInfo& status);
    bool SetTargetTool(TargetProfile const& profile, TargetControlGroup group, StatusInfo& status);
    bool SetTargetAccelRatio(TargetProfile const& profile, TargetControlGroup group, StatusInfo& status);
    bool SetTargetDecelRatio(TargetProfile const& profile, TargetControlGroup group, StatusInfo& status);

    /// The direct setters neither check nor look at what was sent before. Ratios are in hundredths of a per cent here.
    StatusInfo SetCoord(TargetControlGroup group, CoordinateType type, int userCoordinateNumber);
    StatusInfo SetSpeed(TargetControlGroup group, SpeedStruct speed);
    StatusInfo SetConfig(TargetControlGroup group, Figure const& figure);
    StatusInfo SetTool(TargetControlGroup group, int toolNumber);
    StatusInfo SetAccelRatio(TargetControlGroup group, int ratio);
    StatusInfo SetDecelRatio(TargetControlGroup group, int ratio);
    std::optional<TargetProfile> GetCachedValues(TargetControlGroup group) const;

    /// Clears the controller's targets of one group; the queue stays.
    bool ClearTrajectory(TargetControlGroup group, StatusInfo& status);

    /// Raises alarm 8015 on the pendant with the first 31 bytes of `text`.
    StatusInfo SetAlarm(std::string_view text, unsigned char subCode);

    /// Text for the pendant of a code as the controller sent it.
    std::string GetShortErrorMessage(int code) const;

    /// The group that a motion slot's parameter names; 0 if it can't be read.
    StatusInfo GetCtrlGroupIds(int parameterNumber, ControlGroupId& id);
    StatusInfo MakeCtrlGroupNumberMap();

    /// Starts the monitor unless it runs already; it ends with this object only.
    void StartMonitorTrajectoryThread();
    void TryPopFrontTrajectory();

private:
    bool IsSupported() const;
    StatusInfo AddTargets(MotionStep& step, Motion const& first, std::array<std::optional<Motion>, 3> const& others);
    StatusInfo Queue(MotionStep const& step, StepNumber& stepNumber);
    StatusInfo ReadTargetProgress(ControlGroupId group, double& reached);
    StatusInfo Start();
    StatusInfo Stop(bool clearTrajectory);
    void CountHold();
    StatusInfo SendStop();
    StatusInfo Clear();
    StatusInfo SendClear(std::int32_t group);
    TargetProfile& Cached(TargetControlGroup group);
    bool MayGoOn(StatusInfo& status) const;

    struct NumberedStep {
        StepNumber number{};
        MotionStep step;
    };

    /// Since the monitor last had something to send.
    struct IdleTime {
        TrajectoryProgress::Clock::time_point begin = TrajectoryProgress::Clock::now();
        bool isCounted = false;
    };

    void MonitorTrajectory(std::stop_token const& stop);
    void SendQueue();
    void Rest(IdleTime& idle);
    bool MayTakeStep() const;
    std::optional<NumberedStep> CopyFrontTrajectory();
    StatusInfo SendStep(MotionStep const& step, StepNumber number);
    StatusInfo SendTargetOnce(SendTargetRequest const& request, MotionStep const& step, StepNumber number,
                              bool& isCounted);
    void WaitForRoom(StepNumber number);
    void PopSentStep(StepNumber number);
    void HandleFailedStep(StatusInfo status, StepNumber number, ControlGroupId group);
    StatusInfo RaiseAlarm(int code);
    StatusInfo LogFailure();

    ControlGroupId FailedGroup(MotionStep const& step) const;
    bool Enforces(Rule rule) const { return networkManager->Policy().Enforces(rule); }

    NetworkManager* networkManager;
    std::array<TargetProfile, MotionSlots> cachedProfiles;
    std::optional<TargetControlGroup> groupBeingSet; ///< whose settings are being sent; of the monitor, as the cache
    TrajectoryQueue trajectory;
    RankedMutex<LockRank::MotionStartStop>
        startStopMutex; ///< under Rule::BoundedClose: a start or a stop, with its hold
    RankedMutex<LockRank::MotionQueue> trajectoryMutex;
    RankedMutex<LockRank::MotionTargets> targetsMutex; ///< a target or a clear and its entry in `progress` are one
    TrajectoryProgress progress;
    std::atomic<bool> isHoldDue =
        false; ///< a stop holds the next step back, or would, and was not counted for that yet
    GroupNumberMap groupNumberMap;
    std::once_flag monitorStarted;
    std::jthread monitorThread; ///< last, so that it is joined before what it uses goes
};

/// The caller owns the object.
MotionManagerInterface* MotionManagerPtr(NetworkManager* networkManager);

} // namespace harvlink
