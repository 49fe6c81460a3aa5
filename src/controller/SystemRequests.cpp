#include "controller/SystemRequests.h"

namespace harvlink {
namespace {

constexpr int invalidSystemInfoId = 45063;
constexpr int unknownParameterGroup = 65535;
constexpr int unknownParameter = 65534;

} // namespace

StatusInfo SystemInformationRequest::Decode(StatusInfo status, ReplyTo<SystemInformationRequest> const& reply,
                                            SystemInfoData& data) {
    data = {};
    if (status.StatusCode == invalidSystemInfoId) {
        return StatusInformation(invalidSystemInfoId, "The system ID requested is invalid");
    }
    if (status.StatusCode == 0) {
        data.softwareVersion.assign(reply.payload.softwareVersion.begin(), reply.payload.softwareVersion.end());
        data.modelName.assign(reply.payload.modelName.begin(), reply.payload.modelName.end());
    }
    return status;
}

StatusInfo ParameterRequest::Decode(StatusInfo status, ReplyTo<SystemParameterRequest> const& reply, int& value) {
    value = status.StatusCode == 0 ? reply.payload : 0;
    if (status.StatusCode == unknownParameterGroup) {
        return StatusInformation(ErrorStatusCodes::InvalidSystemParameterGroup,
                                 "The system parameter group is invalid");
    }
    if (status.StatusCode == unknownParameter) {
        return StatusInformation(ErrorStatusCodes::InvalidSystemParameter, "The system parameter requested is invalid");
    }
    return status;
}

} // namespace harvlink
