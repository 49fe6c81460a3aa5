#include "gateway/prometheus/Definitions.h"

#include <array>

namespace harvlink::gateway {

namespace {

using enum MetricKind;

constexpr std::array<MetricDefinition, static_cast<std::size_t>(Metric::Count)> All{{
    {"harvlink_up", Gauge, "", "Whether the controller answers."},
    {"harvlink_last_answer_timestamp_seconds", Gauge, "", "When the controller answered last."},
    {"harvlink_link_state", Gauge, "state", "1 for the state of the link: connecting, online, late, silent, refused."},
    {"harvlink_round_trip_seconds", Histogram, "", "From a request to its answer."},
    {"harvlink_exchanges_total", Counter, "", "Requests that were answered or failed."},
    {"harvlink_timeouts_total", Counter, "", "Reads that failed because no answer came."},
    {"harvlink_repeated_requests_total", Counter, "", "Requests that were sent again because no answer came in time."},
    {"harvlink_late_answers_total", Counter, "", "Answers that came when nobody waited for them any more."},
    {"harvlink_malformed_answers_total", Counter, "", "Answers that could not be read."},
    {"harvlink_refused_total", Counter, "", "Reads that the controller refused."},
    {"harvlink_rounds_total", Counter, "poll", "Rounds of a group of items that were completed."},
    {"harvlink_overruns_total", Counter, "poll", "Rounds that were not finished when the next one was due."},
    {"harvlink_controller_info", Gauge, "address software model", "What the controller is; always 1."},
    {"harvlink_servo_on", Gauge, "", "Whether servo power is on."},
    {"harvlink_running", Gauge, "", "Whether a job runs."},
    {"harvlink_hold", Gauge, "", "Whether the controller is held."},
    {"harvlink_alarming", Gauge, "", "Whether an alarm is active."},
    {"harvlink_erroring", Gauge, "", "Whether an error is active."},
    {"harvlink_control_mode", Gauge, "mode", "1 for the mode of the controller: teach, play, remote."},
    {"harvlink_cycle_mode", Gauge, "cycle", "1 for the cycle of the controller: step, cycle, automatic."},
    {"harvlink_job_info", Gauge, "task job", "The job that a task executes; always 1."},
    {"harvlink_job_line", Gauge, "task", "The line that a task executes."},
    {"harvlink_job_step", Gauge, "task", "The step that a task executes."},
    {"harvlink_job_speed_override_ratio", Gauge, "task", "The speed override of a task; 1 is 100 %."},
    {"harvlink_alarm_active", Gauge, "code subcode", "1 for each alarm that is active, at most four."},
    {"harvlink_alarms", Gauge, "", "How many alarms are active."},
    {"harvlink_axis_position_pulses", Gauge, "group axis", "The position of a motor."},
    {"harvlink_axis_position_meters", Gauge, "group axis coordinate tool", "X, Y or Z of the tool."},
    {"harvlink_axis_position_degrees", Gauge, "group axis coordinate tool", "A rotation of the tool."},
    {"harvlink_axis_torque", Gauge, "group axis", "The torque of a motor, as the controller counts it."},
    {"harvlink_axis_position_error_pulses", Gauge, "group axis", "How far a motor is from where it should be."},
    {"harvlink_variable", Gauge, "variable", "A variable of the controller that is a number."},
    {"harvlink_variable_axis", Gauge, "variable axis",
     "An axis of a position variable, in the units of its coordinate system."},
    {"harvlink_signal", Gauge, "signal", "A signal, 0 or 1."},
    {"harvlink_signal_group", Gauge, "signal", "Eight signals as a number."},
    {"harvlink_register", Gauge, "register", "A register."},
    {"harvlink_operating_time_seconds", Gauge, "time", "An operating time of the controller."},
    {"harvlink_operating_start_timestamp_seconds", Gauge, "time",
     "Since when the controller counts an operating time."},
    {"harvlink_target_progress", Gauge, "slot", "How far the motion to the present target is."},
    {"harvlink_gateway_info", Gauge, "name version", "The gateway; always 1."},
    {"harvlink_gateway_samples_total", Counter, "", "Values that were read."},
    {"harvlink_gateway_dropped_samples_total", Counter, "", "Values that came faster than the gateway took them."},
    {"harvlink_gateway_dropped_events_total", Counter, "", "Events that came faster than the gateway took them."},
    {"harvlink_gateway_dropped_series", Gauge, "", "Series that this answer leaves out because of most_series."},
    {"harvlink_gateway_pauses_total", Counter, "", "Times that the computer did not let the gateway run for 50 ms."},
    {"process_cpu_seconds_total", Counter, "", "Processor time that the gateway took."},
    {"process_resident_memory_bytes", Gauge, "", "Memory that the gateway has."},
    {"process_open_fds", Gauge, "", "Files and sockets that the gateway has open."},
    {"process_start_time_seconds", Gauge, "", "When the gateway was started."},
}};

} // namespace

std::span<MetricDefinition const> Definitions() {
    return All;
}

} // namespace harvlink::gateway
