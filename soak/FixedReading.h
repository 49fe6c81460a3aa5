#pragma once

#include <functional>
#include <string>
#include <vector>

#include "soak/SharedConnection.h"
#include "soak/Worker.h"

namespace harvlink::soak {

/// Something that a client can read and that never changes while the arm is at rest.
struct FixedReading {
    std::string name;
    Family family;
    std::function<StatusInfo(WireImage&)> read;
    WireImage known{}; ///< empty until the first reading
};

std::vector<FixedReading> FixedReadings(SharedConnection& connection);

} // namespace harvlink::soak
