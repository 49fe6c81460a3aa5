#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/output/Words.h"
#include "harvlink/ControllerStateInterface.h"
#include "harvlink/FaultInterface.h"
#include "harvlink/JobInterface.h"
#include "harvlink/StatusInfo.h"
#include "words/values/VariableText.h"

namespace harvlink::cli::watch {

/// Something that was read, or why it could not be.
template <typename Value>
struct Reading {
    StatusInfo status{};
    Value value{};

    bool IsValid() const { return status.StatusCode == 0; }
};

struct GroupFrame {
    using Axes = std::array<double, 8>;

    std::string name;
    std::string axes; ///< the letters of its axes; their count is that of the group
    Reading<Axes> pulses;
    std::optional<Reading<Axes>> base; ///< in mm and degrees; nothing for stations, which have no such position
    Reading<Axes> torque;
};

struct VariableFrame {
    std::string name;
    Reading<VariableValue> value;
};

struct SignalFrame {
    std::string name;
    Reading<bool> on;
};

/// One look at a controller. Its parts are read one after the other: it is no atomic view.
struct Frame {
    using Time = std::chrono::system_clock::time_point;

    std::string host;
    std::string model;
    std::string software;

    std::uint64_t number = 0; ///< of the look, from 1
    Time time{}; ///< of the last look that was answered; what follows is as old
    std::chrono::duration<double, std::milli> duration{}; ///< that this look took
    std::optional<StatusInfo> lost; ///< why the controller is given for lost, if it is
    Time lostSince{};

    Reading<ControllerStateData> state;
    Reading<ActiveAlarms> alarms;
    Reading<JobData> job;
    std::vector<GroupFrame> groups;
    std::vector<VariableFrame> variables;
    std::vector<SignalFrame> signals;
};

} // namespace harvlink::cli::watch
