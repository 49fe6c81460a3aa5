#pragma once

#include <optional>

#include "harvlink/KinematicsInterface.h"
#include "kinematics/KinematicsMessages.h"
#include "wire/NetworkManager.h"

namespace harvlink {

class Kinematics final : public KinematicsInterface {
public:
    explicit Kinematics(NetworkManager* manager) : networkManager(manager) {}

    StatusInfo ConvertPosition(ControlGroupId group, PositionData& position, KinematicConversions conversion,
                               PositionData& result) override;
    StatusInfo ConvertPositionFromCartesian(ControlGroupId group, PositionData& position,
                                            KinematicConversions conversion, KinematicType type,
                                            std::array<double, 8> const& previousAngles, PositionData& result) override;

    /// One exchange. `out` stays as it is on failure.
    StatusInfo DoConversionSimple(ControlGroupId group, UAPIPositionData const& in, UAPIPositionData& out,
                                  CommandNumber command);

    /// By way of joint angles, two exchanges.
    StatusInfo DoConversionPulseToCartesianPos(ControlGroupId group, UAPIPositionData const& in, UAPIPositionData& out);

    /// `type` must hold a value. Absent previous angles go out as zeros.
    StatusInfo DoConversionCartesianPosToJointAngle(ControlGroupId group, UAPIPositionData const& in,
                                                    UAPIPositionData& out, StatusInfo& status,
                                                    std::optional<KinematicType> type,
                                                    std::optional<std::array<double, 8>> const& previousAngles);

    /// What system parameter S2C430 says; KinematicFromSystem stands for an invalid setting. A failed read counts as 0.
    KinematicType GetKinematicType();

    /// For an application to ask first: whether a conversion from Cartesian has what it needs. No conversion calls it.
    StatusInfo CheckInputCartPosParams(std::optional<KinematicType> type, bool previousAngleGiven);

private:
    StatusInfo Convert(ControlGroupId group, PositionData const& position, KinematicConversions conversion,
                       UAPIPositionData& out);
    StatusInfo ConvertFromCartesian(ControlGroupId group, PositionData const& position, KinematicConversions conversion,
                                    KinematicType type, std::array<double, 8> const& previousAngles,
                                    PositionData& result);
    bool IsTooOld() const;

    NetworkManager* networkManager;
};

/// The caller owns the object.
KinematicsInterface* KinematicsPtr(NetworkManager* networkManager);

} // namespace harvlink
