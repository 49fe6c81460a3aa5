#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "position/PositionMessages.h"
#include "wire/GroupAddress.h"

namespace harvlink {

/// Reply to AxisConfigurationRead: an axis name in the low byte of each word, 0 for an axis that is not there.
struct AxisConfigurationDataMsg {
    std::array<std::uint32_t, 8> axisNames{};
};
static_assert(sizeof(AxisConfigurationDataMsg) == 32);

/// Request of UAPIPositionRead.
struct UAPIGetPositionSendData {
    GroupAddress group{};
    std::uint16_t coordinateSelector = 0; ///< 0 base, 1 robot, n + 1 user coordinates n
    std::uint16_t toolNumber = 0;
    std::uint32_t reserved = 0;
};
static_assert(sizeof(UAPIGetPositionSendData) == 16);
static_assert(offsetof(UAPIGetPositionSendData, coordinateSelector) == 8);
static_assert(offsetof(UAPIGetPositionSendData, toolNumber) == 10);
static_assert(offsetof(UAPIGetPositionSendData, reserved) == 12);

/// Reply to UAPIPositionRead.
using UAPIGetPositionRecvData = UAPIPositionData;

} // namespace harvlink
