#include "fleet/Item.h"

namespace harvlink::fleet {
namespace {

/// Addresses end in 0 to 7.
std::uint32_t SignalAddress(std::uint32_t first, std::uint32_t number) {
    constexpr std::uint32_t signalsOfGroup = 8;
    std::uint32_t const place = first % 10 + number;
    return (first / 10 + place / signalsOfGroup) * 10 + place % signalsOfGroup;
}

std::uint32_t IndexOf(FleetItem const& item, std::uint32_t number) {
    switch (item.kind) {
    case FleetItemKind::Signal:
        return SignalAddress(item.index, number);
    case FleetItemKind::SignalGroup:
        return item.index + number * 10;
    default:
        return item.index + number;
    }
}

} // namespace

Item MakeItem(FleetItem const& item, std::uint32_t number) {
    Item made;
    made.index = IndexOf(item, number);
    made.detail = static_cast<std::uint16_t>(item.detail);
    made.kind = static_cast<std::uint8_t>(item.kind);
    made.controlGroup = static_cast<std::uint8_t>(item.group);
    made.coordinate = static_cast<std::uint8_t>(item.coordinate);
    made.toolNumber = item.toolNumber;
    made.userCoordinateNumber = item.userCoordinateNumber;
    made.axis = static_cast<std::int8_t>(item.axis);
    return made;
}

FleetItem ToPublic(Item const& item) {
    return {.kind = item.Kind(),
            .index = item.index,
            .count = 1,
            .group = item.ControlGroup(),
            .coordinate = item.Coordinate(),
            .toolNumber = item.toolNumber,
            .userCoordinateNumber = item.userCoordinateNumber,
            .axis = item.axis,
            .detail = item.detail};
}

} // namespace harvlink::fleet
