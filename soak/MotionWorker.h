#pragma once

#include <string>
#include <vector>

#include "harvlink/harvlink.h"
#include "soak/Worker.h"

namespace harvlink::soak {

/// Opens a connection, uses it and closes it, again and again. With a controller of the older generation it reads and
/// writes a variable, with one of the newer generation it runs a few trajectories. Each must arrive or fail as
/// documented.
class MotionWorker final : public Worker {
public:
    MotionWorker(std::string name, Options const& options, Results& results, std::uint64_t seed, FaultJournal& older,
                 FaultJournal& newer);

private:
    enum class Outcome : std::uint8_t { Arrived, Broken, Failed };

    void Step() override;
    void Visit();
    void Move();
    bool MakeReady(QuorvanController& robot);
    bool RunTrajectory(QuorvanController& robot);
    bool RunAndStop(QuorvanController& robot);
    std::size_t AddPoints(QuorvanController& robot, std::size_t count, PositionData& last);
    Outcome AwaitArrival(QuorvanController& robot, std::size_t count);
    Outcome Broken();
    bool CheckProgress(double progress, double& before, std::size_t count);
    bool IsAtRest(QuorvanController& robot);
    bool HasAlarm(QuorvanController& robot);
    void CheckPosition(QuorvanController& robot, PositionData const& wanted);
    bool ReadState(QuorvanController& robot, ControllerStateData& state);

    FaultJournal& olderJournal_;
    FaultJournal& newerJournal_;
};

} // namespace harvlink::soak
