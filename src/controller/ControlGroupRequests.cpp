#include "controller/ControlGroupRequests.h"

#include <algorithm>

#include "status/ErrorTables.h"
#include "status/GetStatusInfo.h"

namespace harvlink {

void ApplyControlGroupTable(StatusInfo& status) {
    HelperFunction::GetStatusInfo(status, ControlGroupErrorTable, ControlGroupErrorOffset);
}

StatusInfo AxisConfigurationRequest::Decode(StatusInfo status, IncomingPacket<Reply> const& reply,
                                            std::array<char, 8>& configuration) {
    configuration = {};
    if (status.StatusCode == 0) {
        std::ranges::transform(reply.payload.axisNames, configuration.begin(),
                               [](std::uint32_t word) { return static_cast<char>(word & 0xff); });
    }
    ApplyControlGroupTable(status);
    return status;
}

StatusInfo PositionErrorRequest::Decode(StatusInfo status, IncomingPacket<Reply> const& reply,
                                        PositionErrorData& data) {
    data = status.StatusCode == 0 ? reply.payload : PositionErrorData{};
    ApplyControlGroupTable(status);
    return status;
}

StatusInfo TorqueRequest::Decode(StatusInfo status, IncomingPacket<Reply> const& reply, TorqueData& data) {
    data = {.controlGroup = ControlGroupId::R1, .axes = reply.payload};
    ApplyControlGroupTable(status);
    return status;
}

} // namespace harvlink
