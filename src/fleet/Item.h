#pragma once

#include <cstdint>

#include "harvlink/Fleet.h"

namespace harvlink::fleet {

inline constexpr unsigned AlarmPlaces = 4;

/// A FleetItem in the little room that an engine with many thousands of them has. A row is spread out into its elements.
struct Item {
    std::uint32_t index = 0;
    std::uint32_t cell = 0; ///< the first word of its place in the table
    std::uint16_t detail = 0;
    std::uint8_t kind = 0; ///< a FleetItemKind
    std::uint8_t controlGroup = 0; ///< a ControlGroupId
    std::uint8_t coordinate = 0; ///< a CoordinateType
    std::uint8_t toolNumber = 0;
    std::uint8_t userCoordinateNumber = 0;
    std::int8_t axis = -1;
    std::uint8_t group = 0; ///< the place of its FleetGroup
    bool startsDatagram = true; ///< false if the datagram of the item before answers it too
    bool hasDeadBand = false;

    FleetItemKind Kind() const { return static_cast<FleetItemKind>(kind); }
    ControlGroupId ControlGroup() const { return static_cast<ControlGroupId>(controlGroup); }
    CoordinateType Coordinate() const { return static_cast<CoordinateType>(coordinate); }

    /// The exchanges that it takes.
    unsigned Parts() const { return Kind() == FleetItemKind::Alarms ? AlarmPlaces : 1; }
};
static_assert(sizeof(Item) == 20);

/// Element `number` of an item that has passed CheckItem.
Item MakeItem(FleetItem const& item, std::uint32_t number);

/// As a program sees the element: a row of one.
FleetItem ToPublic(Item const& item);

} // namespace harvlink::fleet
