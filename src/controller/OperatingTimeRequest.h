#pragma once

#include "controller/StatusMessages.h"
#include "wire/Request.h"

namespace harvlink {

/// The instance that no time counter has.
inline constexpr std::uint16_t NoTimeCounter = 500;

/// The instance of a time counter; NoTimeCounter if the type does not exist or does not go with the group.
std::uint16_t TimeCounterInstance(ControlGroupId group, TimeType type, ApplicationNumber application);

/// Whether the type exists and goes with the group, whatever the application.
bool HasTimeCounter(TimeType type, ControlGroupId group);

/// What a time counter that does not exist gives, whoever finds that out.
StatusInfo NoSuchTimeCounter();

struct OperatingTimeRequest {
    using Reply = TimeReturnMsg;
    static constexpr CommandNumber command = CommandNumber::OperatingTimeRead;
    static constexpr Service service = Service::ReadAll;
    std::uint16_t instance; ///< from TimeCounterInstance

    /// Throws std::invalid_argument or std::out_of_range if the elapsed time is not readable.
    static StatusInfo Decode(StatusInfo status, ReplyTo<OperatingTimeRequest> const& reply, TimeData& data);
};

} // namespace harvlink
