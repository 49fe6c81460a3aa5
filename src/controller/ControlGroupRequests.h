#pragma once

#include "controller/ControlGroupMessages.h"
#include "harvlink/ControlGroupInterface.h"
#include "harvlink/ControllerVersion.h"
#include "wire/Request.h"

namespace harvlink {

/// Gives a refusal the control group table's text and offset.
void ApplyControlGroupTable(StatusInfo& status);

/// The parts that requests about one control group share.
template <CommandNumber number>
struct ControlGroupRequest {
    static constexpr CommandNumber command = number;
    static constexpr Service service = Service::ReadAll;
    std::uint16_t instance;

    explicit ControlGroupRequest(ControlGroupId group) : instance(static_cast<std::uint16_t>(group)) {}
};

struct AxisConfigurationRequest : ControlGroupRequest<CommandNumber::AxisConfigurationRead> {
    using Reply = AxisConfigurationDataMsg;
    using ControlGroupRequest::ControlGroupRequest;

    static StatusInfo Decode(StatusInfo status, IncomingPacket<Reply> const& reply, std::array<char, 8>& configuration);
};

struct PositionErrorRequest : ControlGroupRequest<CommandNumber::PositionErrorRead> {
    using Reply = PositionErrorData;
    using ControlGroupRequest::ControlGroupRequest;

    static StatusInfo Decode(StatusInfo status, IncomingPacket<Reply> const& reply, PositionErrorData& data);
};

struct TorqueRequest : ControlGroupRequest<CommandNumber::TorqueRead> {
    using Reply = WireAxes;
    using ControlGroupRequest::ControlGroupRequest;

    /// The payload of a refusal is handed out too, unlike in the other reads.
    static StatusInfo Decode(StatusInfo status, IncomingPacket<Reply> const& reply, TorqueData& data);
};

} // namespace harvlink
