#pragma once

#include "harvlink/ControllerStateInterface.h"
#include "wire/SystemInfoMessage.h"
#include "wire/SystemParameterRequest.h"

namespace harvlink {

struct SystemInformationRequest {
    using Reply = SystemInfoReturnMsg;
    static constexpr CommandNumber command = CommandNumber::SystemInformationRead;
    static constexpr Service service = Service::ReadAll;
    std::uint16_t instance;

    explicit SystemInformationRequest(SystemInfoId id) : instance(static_cast<std::uint16_t>(id)) {}

    static StatusInfo Decode(StatusInfo status, ReplyTo<SystemInformationRequest> const& reply, SystemInfoData& data);
};

/// A system parameter with the texts of the controller's refusals. Group 0 stands for none.
struct ParameterRequest : SystemParameterRequest {
    ParameterRequest(SystemParameterType type, int number, int group)
        : SystemParameterRequest{{static_cast<std::uint32_t>(type), static_cast<std::uint32_t>(group),
                                  static_cast<std::uint32_t>(number)}} {}

    static StatusInfo Decode(StatusInfo status, ReplyTo<SystemParameterRequest> const& reply, int& value);
};

} // namespace harvlink
