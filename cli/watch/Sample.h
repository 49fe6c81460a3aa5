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

/// A value that was read, or the status of the read that failed.
template <typename Value>
struct Reading {
    StatusInfo status{};
    Value value{};

    bool IsValid() const { return status.StatusCode == 0; }
};

struct GroupSample {
    using Axes = std::array<double, 8>;

    std::string name;
    std::string axes; ///< the letters of its axes; their count is that of the group
    Reading<Axes> pulses;
    std::optional<Reading<Axes>> base; ///< in mm and degrees; empty for stations, which have no such position
    Reading<Axes> torque;
};

struct VariableSample {
    std::string name;
    Reading<VariableValue> value;
};

struct SignalSample {
    std::string name;
    Reading<bool> on;
};

/// What one reading of a controller found. Its parts are read one after the other, not at one moment.
struct Sample {
    using Time = std::chrono::system_clock::time_point;

    std::string host;
    std::string model;
    std::string software;

    std::uint64_t number = 0; ///< of the reading, from 1
    Time time{}; ///< of the last reading that was answered; all values below are as old
    std::chrono::duration<double, std::milli> duration{}; ///< of this reading
    std::optional<StatusInfo> lost; ///< set if the controller no longer answers
    Time lostSince{};

    Reading<ControllerStateData> state;
    Reading<ActiveAlarms> alarms;
    Reading<JobData> job;
    std::vector<GroupSample> groups;
    std::vector<VariableSample> variables;
    std::vector<SignalSample> signals;
};

} // namespace harvlink::cli::watch
