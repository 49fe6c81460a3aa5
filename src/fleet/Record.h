#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "fleet/ControllerFacts.h"
#include "fleet/Item.h"

/// @file
/// The value of an item as the engine keeps it: the payload of its answer, or what of it concerns the item. It becomes a
/// value for programs when one asks for it, on that program's thread.

namespace harvlink::fleet {

inline constexpr std::size_t AlarmRecordSize = 60; ///< of one place
inline constexpr std::size_t LargestRecord = AlarmPlaces * AlarmRecordSize;

/// The most bytes that a record of the item takes.
std::size_t RoomForRecord(Item const& item);

/// Makes the record of an item from the payload that answers its exchange number `part`; of an alarm only that place.
/// `record` must have RoomForRecord bytes.
/// @return its bytes
std::size_t MakeRecord(Item const& item, unsigned part, ControllerFacts const& facts,
                       std::span<std::byte const> payload, std::span<std::byte> record);

/// What a record says.
struct Reading {
    FleetValue value;
    std::int32_t code = 0; ///< not 0 if the record can't be read
};
Reading ReadRecord(Item const& item, std::span<std::byte const> record);

/// The code by which the interface that reads the same reports a refusal with this code of the controller.
std::int32_t RefusalCode(Item const& item, std::int32_t code);

/// Why a controller of this generation does not have the item; 0 if it does.
std::int32_t RefusalByGeneration(Item const& item, ControllerVersion generation);

} // namespace harvlink::fleet
