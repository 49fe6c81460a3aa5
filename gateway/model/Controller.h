#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "recording/model/Records.h"

namespace harvlink::gateway {

/// A controller that the gateway watches, with all that it reads from it. It never changes: a controller that the
/// configuration changes is removed and added as a new one.
struct Controller {
    std::uint32_t id = 0; ///< its own, as long as the gateway runs; none is used twice
    std::string name; ///< unique among the controllers that are watched at a time
    std::string address;
    /// Each value of a reading is an item with field, unit and type. Rows are spread out, no reading is there twice.
    std::vector<recording::RecordedReading> readings;
    std::vector<std::chrono::milliseconds> periods{}; ///< of the readings; 0 for less than a millisecond
    std::string polls{}; ///< names of its groups, separated by blanks
    std::string encoding = "utf-8"; ///< of the controller; all texts of samples and events are UTF-8
    bool isVirtual = false; ///< of --simulate
};

using ControllerPtr = std::shared_ptr<Controller const>;

} // namespace harvlink::gateway
