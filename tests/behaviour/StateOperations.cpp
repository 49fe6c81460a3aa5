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

void AddState(Operations& table) {
    Add<ControllerStateData, ::ControllerStateData>(
        table, {{114, Pattern(8)}}, BOTH(c.Status->ReadState(out), controller_state_interface_read_state, out));
    Add<SystemInfoData, ISystemInfoData>(table, {{137, Text("YA1.00", 24) + Text("MODEL", 24)}},
                                         BOTH(c.Status->ReadSystemInformation(SystemInfoId::Robot1, out),
                                              controller_state_interface_read_system_information, 11, out));
    Add<TimeData, ::TimeData>(
        table, {{136, Text("2026/11/21 10:00") + Text("12345:12'34", 12)}},
        BOTH(c.Status->ReadOperatingTimes(ControlGroupId::R1, TimeType::ControlPower, out, ApplicationNumber::None),
             controller_state_interface_read_operating_times, 1, 1, out, 0),
        {.mayThrow = true});
    Traits const parameter{.codes = {{65535, 0x30016}, {65534, 0x30011}}, .statusOnOlder = UnsupportedThere};
    Add<int, int>(table, {{924, Pattern(4)}},
                  BOTH(c.Status->ReadSystemParam(SystemParameterType::RS, 22, out), controller_state_read_system_param,
                       4, 22, out),
                  parameter);
    Add<int, int>(table, {{924, Pattern(4)}},
                  BOTH(c.Status->ReadSystemParam(SystemParameterType::S1C, 22, 1, out),
                       controller_state_group_read_system_param, 0, 22, 1, out),
                  parameter);
}

void AddGroups(Operations& table) {
    std::map<int, int> const codes{{40961, 40961 - groupOffset}};
    // The older command and the read of torque also decode the payload of a refusal.
    Add<PositionData, ::PositionData>(
        table, {{117, robotPosition}},
        BOTH(c.ControlGroup->ReadPositionData(ControlGroupId::R1, CoordinateType::Pulse, 0, 0, out),
             control_group_interface_read_position_data, 1, 0, 0, 0, out),
        {.codes = codes, .decodesRefusals = true});
    Add<PositionData, ::PositionData>(
        table, {{829, Words({2}) + U16(3) + U16(1) + Words({5, 0, 11, 22, 33, 44, 55, 66, 77, 88})}},
        BOTH(c.ControlGroup->ReadPositionData(ControlGroupId::R1, CoordinateType::UserCoordinate, 3, 1, out),
             control_group_interface_read_position_data, 1, 19, 3, 1, out),
        {.codes = codes, .statusOnOlder = 0x20016});
    Add<std::array<char, 8>, std::array<char, 8>>(table, {{116, Words({'S', 'L', 'U', 'R', 'B', 'T', 'E', '8'})}},
                                                  BOTH(c.ControlGroup->ReadAxisConfiguration(ControlGroupId::R1, out),
                                                       control_group_interface_read_axis_configuration, 1, out->data()),
                                                  {.codes = codes});
    Add<PositionErrorData, ::PositionErrorData>(table, {{118, Pattern(32)}},
                                                BOTH(c.ControlGroup->ReadPositionError(ControlGroupId::R1, out),
                                                     control_group_interface_read_position_error, 1, out),
                                                {.codes = codes});
    Add<TorqueData, ::TorqueData>(
        table, {{119, Pattern(32)}},
        BOTH(c.ControlGroup->ReadTorqueData(ControlGroupId::R1, out), control_group_interface_read_torque_data, 1, out),
        {.codes = codes, .decodesRefusals = true},
        [](std::size_t) { return TorqueData{.controlGroup = ControlGroupId::R1}; });
}

void AddFaults(Operations& table) {
    Add<ActiveAlarms, IActiveAlarms>(table, Script(4, {112, wireAlarm}),
                                     BOTH(c.Faults->GetActiveAlarms(out), fault_interface_get_active_alarms, out), {},
                                     ReadUpTo<ActiveAlarms>);
    Add<AlarmHistory, IAlarmHistory>(
        table, Script(3, {113, wireAlarm}),
        BOTH(c.Faults->GetAlarmHistory(AlarmCategory::Minor, 3, out), fault_interface_get_alarm_history, 1000, 3, out),
        {}, ReadUpTo<AlarmHistory>);
    // The exchange that cancels the error comes first, and its failure is ignored.
    Add(table, {{130}, {130}}, BOTH(c.Faults->ClearAllFaults(), fault_interface_clear_all_faults), {.ignored = {0}});
}

void AddJobs(Operations& table) {
    std::map<int, int> const codes{{65535, 65535 - jobOffset}, {20992, 20992 - jobOffset}, {16448, 16448 - jobOffset}};
    Add(table, {{135}}, BOTH(c.Job->SetActiveJob("WELD", 3), job_interface_set_active_job, "WELD", 3),
        {.codes = codes});
    Add<JobData, IJobData>(table, {{115, Text("WELD", 32) + Words({12, 3, 5000})}},
                           BOTH(c.Job->GetExecutingJobInformation(TesselTaskNumber::Master, out),
                                job_interface_get_executing_job_information, 0, out),
                           {.codes = codes});
    Add<std::vector<std::string>, IJobStack>(
        table, {{981, Words({2}) + Text("MAIN", 33) + Text("WELD", 363)}},
        BOTH(c.Job->GetJobStack(TesselTaskNumber::Master, out), job_interface_get_job_stack, 0, out),
        {.codes = codes, .statusOnOlder = UnsupportedThere, .isUntouchedOnOlder = true});
}

void AddCommands(Operations& table) {
    // The operation always reads the mode, and after a refusal once more for the text.
    Add(table, {{131}, {114, Words({0x40})}},
        BOTH(c.ControlCommands->SetServos(SignalStatus::On), control_commands_interface_SetServos, 1),
        {.ignored = {1},
         .afterFailure = {{114, Words({0x40})}, {114, Words({0x40})}},
         .failureMessage = "Unable to turn on servos. Remote Mode is not selected."});
    Add(table, {{131}}, BOTH(c.ControlCommands->SetHold(SignalStatus::On), control_commands_interface_SetHold, 1));
    Add(table, {{132}},
        BOTH(c.ControlCommands->SetCycleMode(CycleMode::Cycle), control_commands_interface_SetCycleMode, 1));
    Add(table, {{133}},
        BOTH(c.ControlCommands->DisplayStringToPendant("hello"), control_commands_interface_DisplayStringToPendant,
             "hello"));
    Add(table, {{134}}, BOTH(c.ControlCommands->StartJob(), control_commands_interface_StartJob));
}

} // namespace

void AddStateOperations(Operations& table) {
    AddState(table);
    AddGroups(table);
    AddFaults(table);
    AddJobs(table);
    AddCommands(table);
}

} // namespace harvlink::test
