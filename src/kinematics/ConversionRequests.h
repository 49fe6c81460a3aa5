#pragma once

#include "harvlink/KinematicsInterface.h"
#include "kinematics/KinematicsMessages.h"
#include "wire/SystemParameterRequest.h"

namespace harvlink {

/// A conversion that the controller computes. After a failure the output stays as it is.
template <typename Message>
struct ConversionRequest {
    using Reply = UAPIPositionData;
    static constexpr Service service = Service::ReadAll;
    static constexpr std::uint16_t instance = 0;
    CommandNumber command;
    Message payload;

    static StatusInfo Decode(StatusInfo status, IncomingPacket<Reply> const& reply, UAPIPositionData& position) {
        if (status.StatusCode == 0) {
            position = reply.payload;
        }
        return status;
    }
};

using SimpleConversionRequest = ConversionRequest<ConversionMsg>;
using CartesianConversionRequest = ConversionRequest<ConvertCartPosToJointAngleMsg>;

/// What system parameter S2C430 says; KinematicFromSystem stands for an invalid setting. Of a failed read the payload
/// counts, which is 0 if there was none.
struct KinematicTypeRequest : SystemParameterRequest {
    constexpr KinematicTypeRequest() : SystemParameterRequest{{.type = 1, .group = 1, .number = 430}} {}

    static StatusInfo Decode(StatusInfo status, ReplyTo<SystemParameterRequest> const& reply, KinematicType& type);
};

} // namespace harvlink
