#pragma once

#include "controller/StatusMessages.h"
#include "wire/Request.h"

namespace harvlink {

/// Stands for a time counter that does not exist.
inline constexpr std::uint16_t NoTimeCounter = 500;

/// The instance of a time counter; NoTimeCounter if the type does not exist or does not go with the group.
std::uint16_t TimeCounterInstance(ControlGroupId group, TimeType type, ApplicationNumber application);

/// Whether the type exists and goes with the group, whatever the application.
bool HasTimeCounter(TimeType type, ControlGroupId group);

/// Code and text of a time counter that does not exist, whether the library or the controller finds out.
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
