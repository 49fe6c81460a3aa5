#pragma once

#include "soak/SharedConnection.h"
#include "soak/Worker.h"

namespace harvlink::soak {

/// Converts random positions and converts them back.
class KinematicsWorker final : public Worker {
public:
    KinematicsWorker(std::string name, Options const& options, Results& results, std::uint64_t seed,
                     SharedConnection& connection)
        : Worker(std::move(name), options, results, seed, {connection.journal}),
          kinematics_(*connection.robot->Kinematics) {}

private:
    void Step() override;
    bool Convert(PositionData const& from, KinematicConversions conversion, PositionData& result);
    bool ConvertFromCartesian(PositionData const& from, KinematicConversions conversion, PositionData& result);
    void Compare(std::string const& what, PositionData const& one, PositionData const& other, double tolerance);
    PositionData RandomAngles();

    KinematicsInterface& kinematics_;
};

} // namespace harvlink::soak
