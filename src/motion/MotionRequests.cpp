#include "motion/MotionRequests.h"

#include <algorithm>

namespace harvlink {
namespace {

constexpr std::uint32_t motionSlotParameterType = 11;

/// The controller numbers robots, bases and stations without gaps: 1 to 8, 9 to 16, 17 and up.
ControlGroupId GroupOfContinuousNumber(std::int32_t number) {
    if (number < 9) {
        return static_cast<ControlGroupId>(number);
    }
    return static_cast<ControlGroupId>(static_cast<std::uint32_t>(number) + (number <= 16 ? 2U : 4U));
}

} // namespace

MotionSlotRequest::MotionSlotRequest(int parameterNumber)
    : SystemParameterRequest{{motionSlotParameterType, 0, static_cast<std::uint32_t>(parameterNumber)}} {}

StatusInfo MotionSlotRequest::Decode(StatusInfo status, ReplyTo<SystemParameterRequest> const& reply,
                                     ControlGroupId& group) {
    group = status.StatusCode == 0 ? GroupOfContinuousNumber(reply.payload) : ControlGroupId{};
    return status;
}

SetAlarmRequest::SetAlarmRequest(std::string_view text, std::uint8_t subCode) : payload{.subCode = subCode} {
    std::copy_n(text.begin(), std::min(text.size(), payload.text.size() - 1), payload.text.begin());
}

} // namespace harvlink
