#pragma once

#include "wire/Request.h"
#include "wire/SystemParameterMessage.h"

namespace harvlink {

/// Reads one system parameter of a controller from `VersionYA` up. Each subsystem that reads one decodes
/// the reply itself, because the same codes mean different things to them.
struct SystemParameterRequest {
    using Reply = std::int32_t;
    static constexpr CommandNumber command = CommandNumber::SystemParameterRead;
    static constexpr Service service = Service::ReadAll;
    static constexpr std::uint16_t instance = 0;

    SytemParamMsgOut payload{};
};

} // namespace harvlink
