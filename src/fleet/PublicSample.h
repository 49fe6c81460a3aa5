#pragma once

#include "fleet/ControllerRecord.h"
#include "fleet/EventQueue.h"
#include "fleet/SampleQueue.h"

namespace harvlink::fleet {

/// Makes the sample that programs see. The texts that it holds are used again.
void ToPublic(ControllerRecord const& controller, std::uint32_t place, Stamp const& stamp,
              std::span<std::byte const> record, FleetSample& sample);

void ToPublic(ControllerRecord const& controller, RawEvent const& raw, FleetEvent& event);

FleetControllerStatistics StatisticsOf(ControllerRecord const& controller);

/// Appends the latest value of each item.
void AppendLatest(ControllerRecord const& controller, std::vector<FleetSample>& samples);

} // namespace harvlink::fleet
