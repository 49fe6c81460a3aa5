#pragma once

#include <span>
#include <string_view>

namespace harvlink::gateway {

/// All metrics about controllers and the gateway itself; those of the sinks come besides, as Figures.
enum class Metric {
    Up,
    LastAnswer,
    LinkState,
    RoundTrip,
    Exchanges,
    Timeouts,
    RepeatedRequests,
    LateAnswers,
    MalformedAnswers,
    Refused,
    Rounds,
    Overruns,
    ControllerInfo,
    ServoOn,
    Running,
    Hold,
    Alarming,
    Erroring,
    ControlMode,
    CycleMode,
    JobInfo,
    JobLine,
    JobStep,
    JobSpeed,
    AlarmActive,
    Alarms,
    AxisPulses,
    AxisMeters,
    AxisDegrees,
    AxisTorque,
    AxisErrorPulses,
    Variable,
    VariableAxis,
    Signal,
    SignalGroup,
    Register,
    OperatingTime,
    OperatingStart,
    TargetProgress,
    GatewayInfo,
    Samples,
    DroppedSamples,
    DroppedEvents,
    DroppedSeries,
    EnginePauses,
    ProcessCpu,
    ProcessMemory,
    ProcessDescriptors,
    ProcessStart,
    Count
};

enum class MetricKind { Gauge, Counter, Histogram };

struct MetricDefinition {
    std::string_view name;
    MetricKind kind;
    std::string_view labels; ///< besides "controller", separated by blanks
    std::string_view help;
};

/// By Metric.
std::span<MetricDefinition const> Definitions();

inline MetricDefinition const& DefinitionOf(Metric metric) {
    return Definitions()[static_cast<std::size_t>(metric)];
}

} // namespace harvlink::gateway
