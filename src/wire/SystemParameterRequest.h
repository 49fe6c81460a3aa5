#pragma once

#include "wire/Request.h"
#include "wire/SystemParameterMessage.h"

namespace harvlink {

/// Reads one system parameter of a controller from `VersionYA` up. Who reads it gives the codes their meaning.
struct SystemParameterRequest {
    using Reply = std::int32_t;
    static constexpr CommandNumber command = CommandNumber::SystemParameterRead;
    static constexpr Service service = Service::ReadAll;
    static constexpr std::uint16_t instance = 0;

    SytemParamMsgOut payload{};
};

} // namespace harvlink
