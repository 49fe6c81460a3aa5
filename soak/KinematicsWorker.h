#pragma once

#include "soak/Session.h"
#include "soak/Worker.h"

namespace harvlink::soak {

/// Converts random positions there and back.
class KinematicsWorker final : public Worker {
public:
    KinematicsWorker(std::string name, Options const& options, Ledger& ledger, std::uint64_t seed, Session& session)
        : Worker(std::move(name), options, ledger, seed), kinematics_(*session.robot->Kinematics) {}

private:
    void Step() override;
    bool Convert(PositionData const& from, KinematicConversions conversion, PositionData& result);
    bool ConvertFromCartesian(PositionData const& from, KinematicConversions conversion, PositionData& result);
    void Compare(std::string const& what, PositionData const& one, PositionData const& other, double tolerance);
    PositionData RandomAngles();

    KinematicsInterface& kinematics_;
};

} // namespace harvlink::soak
