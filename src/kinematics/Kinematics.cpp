#include "kinematics/Kinematics.h"

#include "kinematics/ConversionRequests.h"
#include "position/AxisScaling.h"
#include "status/ErrorTables.h"
#include "status/GetStatusInfo.h"
#include "wire/Guarded.h"

namespace harvlink {
namespace {

void ApplyConversionTable(StatusInfo& status) {
    HelperFunction::GetStatusInfo(status, ConversionErrorTable, ConversionErrorOffset);
}

StatusInfo TooOld() {
    return StatusInformation(ErrorStatusCodes::UnsupportedOnThisController);
}

} // namespace

StatusInfo KinematicTypeRequest::Decode(StatusInfo status, ReplyTo<SystemParameterRequest> const& reply,
                                        KinematicType& type) {
    switch (reply.payload) {
    case 0:
        type = KinematicType::KinematicFigure;
        break;
    case 1:
        type = KinematicType::Delta;
        break;
    default:
        type = KinematicType::KinematicFromSystem;
    }
    return status;
}

KinematicsInterface* KinematicsPtr(NetworkManager* networkManager) {
    return new Kinematics(networkManager);
}

/// Compared signed, on purpose: unlike for motion, an unknown generation is too old here.
bool Kinematics::IsTooOld() const {
    return networkManager->controllerVersion < ControllerVersion::VersionYA;
}

StatusInfo Kinematics::ConvertPosition(ControlGroupId group, PositionData& position, KinematicConversions conversion,
                                       PositionData& result) {
    if (IsTooOld()) {
        return Guarded(*networkManager, TooOld);
    }
    return Guarded(*networkManager, result, [&] {
        result = {};
        UAPIPositionData converted;
        StatusInfo status = Convert(group, position, conversion, converted);
        if (status.StatusCode != 0) {
            ApplyConversionTable(status);
            return status;
        }
        result = converted;
        if (conversion == KinematicConversions::PulseToJointAngle) {
            result.coordinateType = CoordinateType::JointAngle;
        }
        return status;
    });
}

StatusInfo Kinematics::Convert(ControlGroupId group, PositionData const& position, KinematicConversions conversion,
                               UAPIPositionData& out) {
    switch (conversion) {
    case KinematicConversions::JointAngleToCartesianPos:
        return DoConversionSimple(group, {position, true}, out, CommandNumber::ConvertJointAngleToCartesian);
    case KinematicConversions::PulseToJointAngle:
        return DoConversionSimple(group, {position, false}, out, CommandNumber::ConvertPulseToJointAngle);
    case KinematicConversions::JointAngleToPulse:
        return DoConversionSimple(group, {position, true}, out, CommandNumber::ConvertJointAngleToPulse);
    case KinematicConversions::PulseToCartesianPos:
        return DoConversionPulseToCartesianPos(group, {position, false}, out);
    default:
        return StatusInformation(ErrorStatusCodes::InvalidConversionToCartesian);
    }
}

StatusInfo Kinematics::ConvertPositionFromCartesian(ControlGroupId group, PositionData& position,
                                                    KinematicConversions conversion, KinematicType type,
                                                    std::array<double, 8> const& previousAngles, PositionData& result) {
    if (IsTooOld()) {
        return Guarded(*networkManager, TooOld);
    }
    StatusInfo status = Guarded(*networkManager, result, [&] {
        result = {};
        return ConvertFromCartesian(group, position, conversion, type, previousAngles, result);
    });
    if (conversion == KinematicConversions::CartesianPosToJointAngle) {
        result.coordinateType = CoordinateType::JointAngle; // also after a failure, of zero axes
    }
    return status;
}

StatusInfo Kinematics::ConvertFromCartesian(ControlGroupId group, PositionData const& position,
                                            KinematicConversions conversion, KinematicType type,
                                            std::array<double, 8> const& previousAngles, PositionData& result) {
    bool const toJointAngle = conversion == KinematicConversions::CartesianPosToJointAngle;
    if (!toJointAngle && conversion != KinematicConversions::CartesianPosToPulse) {
        return StatusInformation(ErrorStatusCodes::InvalidConversionFromCartesian);
    }
    StatusInfo status;
    UAPIPositionData jointAngles;
    DoConversionCartesianPosToJointAngle(group, {position, false}, jointAngles, status, type, previousAngles);
    if (toJointAngle) {
        result = jointAngles;
    } else if (status.StatusCode == 0) {
        UAPIPositionData pulses;
        status = DoConversionSimple(group, jointAngles, pulses, CommandNumber::ConvertJointAngleToPulse);
        result = pulses;
    }
    ApplyConversionTable(status);
    return status;
}

StatusInfo Kinematics::DoConversionSimple(ControlGroupId group, UAPIPositionData const& in, UAPIPositionData& out,
                                          CommandNumber command) {
    return CarryOut(*networkManager, SimpleConversionRequest{command, {GroupAddress(group), in}}, out);
}

StatusInfo Kinematics::DoConversionPulseToCartesianPos(ControlGroupId group, UAPIPositionData const& in,
                                                       UAPIPositionData& out) {
    UAPIPositionData jointAngles;
    StatusInfo status = DoConversionSimple(group, in, jointAngles, CommandNumber::ConvertPulseToJointAngle);
    if (status.StatusCode != 0) {
        return status;
    }
    return DoConversionSimple(group, jointAngles, out, CommandNumber::ConvertJointAngleToCartesian);
}

StatusInfo Kinematics::DoConversionCartesianPosToJointAngle(
    ControlGroupId group, UAPIPositionData const& in, UAPIPositionData& out, StatusInfo& status,
    std::optional<KinematicType> type, std::optional<std::array<double, 8>> const& previousAngles) {
    ConvertCartPosToJointAngleMsg message{.group = GroupAddress(group), .position = in, .kinematicType = type.value()};
    if (previousAngles) {
        // In the controller's unit already, unlike every other position: truncated, without a factor.
        message.previousAngles = PulseScaling.ToWire(*previousAngles);
    }
    status = CarryOut(*networkManager, CartesianConversionRequest{CommandNumber::ConvertCartesianToJointAngle, message},
                      out);
    return status;
}

KinematicType Kinematics::GetKinematicType() {
    KinematicType type{};
    CarryOut(*networkManager, KinematicTypeRequest{}, type);
    return type;
}

/// Not virtual, so that no slot of the interface moves. Another implementation of the interface has no parameter to ask.
StatusInfo KinematicsInterface::CheckInputCartPosParams(std::optional<KinematicType> type, bool previousAngleGiven) {
    if (auto* const kinematics = dynamic_cast<Kinematics*>(this)) {
        return kinematics->CheckInputCartPosParams(type, previousAngleGiven);
    }
    return StatusInformation(type == KinematicType::KinematicFromSystem ? ErrorStatusCodes::InvalidSystemKinematicType
                                                                        : ErrorStatusCodes::Ok);
}

StatusInfo Kinematics::CheckInputCartPosParams(std::optional<KinematicType> type, bool previousAngleGiven) {
    if (type != KinematicType::KinematicFromSystem) {
        return StatusInformation(ErrorStatusCodes::Ok);
    }
    switch (GetKinematicType()) {
    case KinematicType::Delta:
        return StatusInformation(previousAngleGiven ? ErrorStatusCodes::Ok
                                                    : ErrorStatusCodes::DeltaPreviousAngleMissing);
    case KinematicType::KinematicFigure:
        return StatusInformation(ErrorStatusCodes::Ok);
    default:
        return StatusInformation(ErrorStatusCodes::InvalidSystemKinematicType);
    }
}

} // namespace harvlink
