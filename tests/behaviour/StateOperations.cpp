#include "behaviour/Operation.h"

namespace harvlink::test {
namespace {

constexpr int groupOffset = 60000000;
constexpr int jobOffset = 80000000;

Bytes const wireAlarm = Words({4107, 3, 0}) + Text("2026/11/21 10:00") + Text("OVERRUN", 32);
AlarmData const readAlarm{4107, 3, "2026/11/21 10:00", "OVERRUN" + std::string(25, '\0')};
Bytes const robotPosition = Words({16, 5, 1, 2, 3, 11, 22, 33, 44, 55, 66, 77, 88});

/// The list of alarms that were read before an exchange failed.
template <typename Alarms>
Alarms ReadUpTo(std::size_t failed) {
    Alarms list;
    std::fill_n(list.alarms.begin(), failed, readAlarm);
    list.numberOfAlarms = static_cast<std::uint32_t>(failed);
    return list;
}

void AddState(Table& table) {
    Add<ControllerStateData, ::ControllerStateData>(table, "controller_state_interface_read_state", {{114, Pattern(8)}},
                                                    ON_CLASS(c.Status->ReadState(out)),
                                                    ON_PLAIN(controller_state_interface_read_state(h, out)));
    Add<SystemInfoData, ISystemInfoData>(table, "controller_state_interface_read_system_information",
                                         {{137, Text("YA1.00", 24) + Text("MODEL", 24)}},
                                         ON_CLASS(c.Status->ReadSystemInformation(SystemInfoId::Robot1, out)),
                                         ON_PLAIN(controller_state_interface_read_system_information(h, 11, out)));
    Add<TimeData, ::TimeData>(table, "controller_state_interface_read_operating_times",
                              {{136, Text("2026/11/21 10:00") + Text("12345:12'34", 12)}},
                              ON_CLASS(c.Status->ReadOperatingTimes(ControlGroupId::R1, TimeType::ControlPower, out,
                                                                    ApplicationNumber::None)),
                              ON_PLAIN(controller_state_interface_read_operating_times(h, 1, 1, out, 0)),
                              {.mayThrow = true});
    Traits const parameter{.codes = {{65535, 0x30016}, {65534, 0x30011}}, .statusOnOlder = UnsupportedThere};
    Add<int, int>(table, "controller_state_read_system_param", {{924, Pattern(4)}},
                  ON_CLASS(c.Status->ReadSystemParam(SystemParameterType::RS, 22, out)),
                  ON_PLAIN(controller_state_read_system_param(h, 4, 22, out)), parameter);
    Add<int, int>(table, "controller_state_group_read_system_param", {{924, Pattern(4)}},
                  ON_CLASS(c.Status->ReadSystemParam(SystemParameterType::S1C, 22, 1, out)),
                  ON_PLAIN(controller_state_group_read_system_param(h, 0, 22, 1, out)), parameter);
}

void AddGroups(Table& table) {
    std::map<int, int> const codes{{40961, 40961 - groupOffset}};
    // The older command and the read of torque also decode the payload of a refusal.
    Add<PositionData, ::PositionData>(
        table, "control_group_interface_read_position_data", {{117, robotPosition}},
        ON_CLASS(c.ControlGroup->ReadPositionData(ControlGroupId::R1, CoordinateType::Pulse, 0, 0, out)),
        ON_PLAIN(control_group_interface_read_position_data(h, 1, 0, 0, 0, out)),
        {.codes = codes, .decodesRefusals = true});
    Add<PositionData, ::PositionData>(
        table, "control_group_interface_read_position_data",
        {{829, Words({2}) + U16(3) + U16(1) + Words({5, 0, 11, 22, 33, 44, 55, 66, 77, 88})}},
        ON_CLASS(c.ControlGroup->ReadPositionData(ControlGroupId::R1, CoordinateType::UserCoordinate, 3, 1, out)),
        ON_PLAIN(control_group_interface_read_position_data(h, 1, 19, 3, 1, out)),
        {.codes = codes, .statusOnOlder = 0x20016});
    Add<std::array<char, 8>, std::array<char, 8>>(
        table, "control_group_interface_read_axis_configuration",
        {{116, Words({'S', 'L', 'U', 'R', 'B', 'T', 'E', '8'})}},
        ON_CLASS(c.ControlGroup->ReadAxisConfiguration(ControlGroupId::R1, out)),
        ON_PLAIN(control_group_interface_read_axis_configuration(h, 1, out->data())), {.codes = codes});
    Add<PositionErrorData, ::PositionErrorData>(
        table, "control_group_interface_read_position_error", {{118, Pattern(32)}},
        ON_CLASS(c.ControlGroup->ReadPositionError(ControlGroupId::R1, out)),
        ON_PLAIN(control_group_interface_read_position_error(h, 1, out)), {.codes = codes});
    Add<TorqueData, ::TorqueData>(table, "control_group_interface_read_torque_data", {{119, Pattern(32)}},
                                  ON_CLASS(c.ControlGroup->ReadTorqueData(ControlGroupId::R1, out)),
                                  ON_PLAIN(control_group_interface_read_torque_data(h, 1, out)),
                                  {.codes = codes, .decodesRefusals = true},
                                  [](std::size_t) { return TorqueData{.controlGroup = ControlGroupId::R1}; });
}

void AddFaults(Table& table) {
    Add<ActiveAlarms, IActiveAlarms>(table, "fault_interface_get_active_alarms", Script(4, {112, wireAlarm}),
                                     ON_CLASS(c.Faults->GetActiveAlarms(out)),
                                     ON_PLAIN(fault_interface_get_active_alarms(h, out)), {}, ReadUpTo<ActiveAlarms>);
    Add<AlarmHistory, IAlarmHistory>(table, "fault_interface_get_alarm_history", Script(3, {113, wireAlarm}),
                                     ON_CLASS(c.Faults->GetAlarmHistory(AlarmCategory::Minor, 3, out)),
                                     ON_PLAIN(fault_interface_get_alarm_history(h, 1000, 3, out)), {},
                                     ReadUpTo<AlarmHistory>);
    // The exchange that cancels the error comes first, and its failure is ignored.
    Add<NoOutput, NoOutput>(table, "fault_interface_clear_all_faults", {{130}, {130}},
                            ON_CLASS(c.Faults->ClearAllFaults()), ON_PLAIN(fault_interface_clear_all_faults(h)),
                            {.ignored = {0}});
}

void AddJobs(Table& table) {
    std::map<int, int> const codes{{65535, 65535 - jobOffset}, {20992, 20992 - jobOffset}, {16448, 16448 - jobOffset}};
    Add<NoOutput, NoOutput>(table, "job_interface_set_active_job", {{135}}, ON_CLASS(c.Job->SetActiveJob("WELD", 3)),
                            ON_PLAIN(job_interface_set_active_job(h, "WELD", 3)), {.codes = codes});
    Add<JobData, IJobData>(table, "job_interface_get_executing_job_information",
                           {{115, Text("WELD", 32) + Words({12, 3, 5000})}},
                           ON_CLASS(c.Job->GetExecutingJobInformation(TesselTaskNumber::Master, out)),
                           ON_PLAIN(job_interface_get_executing_job_information(h, 0, out)), {.codes = codes});
    Add<std::vector<std::string>, IJobStack>(
        table, "job_interface_get_job_stack", {{981, Words({2}) + Text("MAIN", 33) + Text("WELD", 363)}},
        ON_CLASS(c.Job->GetJobStack(TesselTaskNumber::Master, out)), ON_PLAIN(job_interface_get_job_stack(h, 0, out)),
        {.codes = codes, .statusOnOlder = UnsupportedThere, .isUntouchedOnOlder = true});
}

void AddCommands(Table& table) {
    // The operation always reads the mode, and after a refusal once more for the text.
    Add<NoOutput, NoOutput>(table, "control_commands_interface_SetServos", {{131}, {114, Words({0x40})}},
                            ON_CLASS(c.ControlCommands->SetServos(SignalStatus::On)),
                            ON_PLAIN(control_commands_interface_SetServos(h, 1)),
                            {.ignored = {1},
                             .afterFailure = {{114, Words({0x40})}, {114, Words({0x40})}},
                             .failureMessage = "Unable to turn on servos. Remote Mode is not selected."});
    Add<NoOutput, NoOutput>(table, "control_commands_interface_SetHold", {{131}},
                            ON_CLASS(c.ControlCommands->SetHold(SignalStatus::On)),
                            ON_PLAIN(control_commands_interface_SetHold(h, 1)));
    Add<NoOutput, NoOutput>(table, "control_commands_interface_SetCycleMode", {{132}},
                            ON_CLASS(c.ControlCommands->SetCycleMode(CycleMode::Cycle)),
                            ON_PLAIN(control_commands_interface_SetCycleMode(h, 1)));
    Add<NoOutput, NoOutput>(table, "control_commands_interface_DisplayStringToPendant", {{133}},
                            ON_CLASS(c.ControlCommands->DisplayStringToPendant("hello")),
                            ON_PLAIN(control_commands_interface_DisplayStringToPendant(h, "hello")));
    Add<NoOutput, NoOutput>(table, "control_commands_interface_StartJob", {{134}},
                            ON_CLASS(c.ControlCommands->StartJob()), ON_PLAIN(control_commands_interface_StartJob(h)));
}

} // namespace

void AddStateOperations(Table& table) {
    AddState(table);
    AddGroups(table);
    AddFaults(table);
    AddJobs(table);
    AddCommands(table);
}

} // namespace harvlink::test
