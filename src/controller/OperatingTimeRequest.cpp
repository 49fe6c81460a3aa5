#include "controller/OperatingTimeRequest.h"

namespace harvlink {
namespace {

constexpr int invalidInstance = 40961;
constexpr int invalidTimeParameter = 51200;
constexpr std::uint16_t stationGroupBase = 10;

constexpr std::string_view invalidTimeTypeText =
    "Invalid TimeType selected. An example of this may be selection of Station operating time when no station exists.";

bool IsRobot(ControlGroupId group) {
    return group >= ControlGroupId::R1 && group <= ControlGroupId::R8;
}

bool IsStation(ControlGroupId group) {
    return group >= ControlGroupId::S1 && group <= ControlGroupId::S24;
}

/// Which groups have a time counter of this type, and the base of its instance numbers.
struct TimeCounter {
    enum class Of : std::uint8_t { Everything, Robot, Station, Application };

    TimeType type;
    Of of;
    std::uint16_t base;
};

constexpr TimeCounter timeCounters[] = {
    {TimeType::ControlPower, TimeCounter::Of::Everything, 1},
    {TimeType::ServoPowerTotal, TimeCounter::Of::Everything, 10},
    {TimeType::ServoPowerRobot, TimeCounter::Of::Robot, 10},
    {TimeType::ServoPowerStation, TimeCounter::Of::Station, 10},
    {TimeType::PlaybackTotal, TimeCounter::Of::Everything, 110},
    {TimeType::PlaybackRobot, TimeCounter::Of::Robot, 110},
    {TimeType::PlaybackStation, TimeCounter::Of::Station, 110},
    {TimeType::MovingTotal, TimeCounter::Of::Everything, 210},
    {TimeType::MovingRobot, TimeCounter::Of::Robot, 210},
    {TimeType::MovingStation, TimeCounter::Of::Station, 210},
    {TimeType::Application, TimeCounter::Of::Application, 300},
};

TimeCounter const* FindTimeCounter(TimeType type, ControlGroupId group) {
    for (TimeCounter const& counter : timeCounters) {
        if (counter.type == type) {
            bool const fits = (counter.of != TimeCounter::Of::Robot || IsRobot(group)) &&
                              (counter.of != TimeCounter::Of::Station || IsStation(group));
            return fits ? &counter : nullptr;
        }
    }
    return nullptr;
}

} // namespace

std::uint16_t TimeCounterInstance(ControlGroupId group, TimeType type, ApplicationNumber application) {
    TimeCounter const* const counter = FindTimeCounter(type, group);
    if (counter == nullptr) {
        return NoTimeCounter;
    }
    switch (counter->of) {
    case TimeCounter::Of::Robot:
        return static_cast<std::uint16_t>(static_cast<int>(group) + counter->base);
    case TimeCounter::Of::Station:
        return static_cast<std::uint16_t>(static_cast<int>(group) - stationGroupBase + counter->base);
    case TimeCounter::Of::Application:
        return static_cast<std::uint16_t>(static_cast<unsigned>(application) + counter->base);
    default:
        return counter->base;
    }
}

bool HasTimeCounter(TimeType type, ControlGroupId group) {
    return FindTimeCounter(type, group) != nullptr;
}

StatusInfo NoSuchTimeCounter() {
    return StatusInformation(invalidInstance, invalidTimeTypeText);
}

StatusInfo OperatingTimeRequest::Decode(StatusInfo status, ReplyTo<OperatingTimeRequest> const& reply, TimeData& data) {
    data = {};
    if (status.StatusCode == 0) {
        data = reply.payload;
    } else if (status.StatusCode == invalidTimeParameter) {
        status.Message = "Invalid parameter. Check controlGroupId and ensure that it exists on your controller.";
    } else if (status.StatusCode == invalidInstance) {
        status.Message = invalidTimeTypeText;
    }
    return status;
}

} // namespace harvlink
