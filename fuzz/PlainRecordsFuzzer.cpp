#include <memory>

#include "Session.h"
#include "binding/Binding.h"

// The records of the plain interface in both directions. Input records come from the fuzzer; outputs must fit their record,
// and the caller must be able to free them. Input: family, generation, records, answers.

using harvlink::fuzz::Input;
using harvlink::fuzz::Require;
using harvlink::fuzz::Session;
using harvlink::fuzz::TakeAnswers;

namespace {

struct Records {
    std::uint32_t number;
    std::uint32_t value;
    std::int32_t group;
    std::int32_t type;
    CircularMotion motion;
    PositionData position;
    std::array<char, 40> text;
};

void Free(char* text) {
    Require(text != nullptr && std::strlen(text) < 0x10000, "a text exists and is terminated");
    std::free(text); // NOLINT(cppcoreguidelines-no-malloc): as a caller in another language does
}

template <typename... Texts>
void Done(IStatusInfo status, Texts... texts) {
    Free(status.Message);
    (Free(texts), ...);
}

/// A separate record on the heap, so that the sanitizer detects a write outside of it.
template <typename Record>
std::unique_ptr<Record> New() {
    return std::make_unique<Record>();
}

template <typename Record>
void Copy(IStatusInfo (*read)(ControllerHandle, unsigned short, Record*),
          IStatusInfo (*write)(ControllerHandle, Record const*), ControllerHandle handle, Records const& with) {
    auto const record = New<Record>();
    Done(read(handle, static_cast<std::uint16_t>(with.number), record.get()));
    record->positionData = with.position;
    Done(write(handle, record.get()));
}

void Variables(ControllerHandle handle, Records& with) {
    auto const index = static_cast<std::uint16_t>(with.number);
    auto const byte = New<ByteVariableData>();
    Done(byte_variable_interface_read(handle, index, byte.get()));
    Done(byte_variable_interface_write(handle, *byte));
    auto const real = New<RealVariableData>();
    Done(real_variable_interface_read(handle, index, real.get()));
    Done(real_variable_interface_write(handle, *real));
    auto const text = New<IStringVariableData>();
    auto const status = string_variable_interface_read(handle, index, text.get());
    Done(status, text->value);
    text->value = with.text.data();
    Done(string_variable_interface_write(handle, text.get()));
}

void Positions(ControllerHandle handle, Records& with) {
    Copy(robot_position_variable_interface_read, robot_position_variable_interface_write, handle, with);
    Copy(base_position_variable_interface_read, base_position_variable_interface_write, handle, with);
    Copy(station_position_variable_interface_read, station_position_variable_interface_write, handle, with);
    auto const position = New<PositionData>();
    Done(control_group_interface_read_position_data(handle, with.group, with.type, 1, 1, position.get()));
    auto const torque = New<TorqueData>();
    Done(control_group_interface_read_torque_data(handle, with.group, torque.get()));
}

void Alarms(ControllerHandle handle, Records& with) {
    auto const alarms = New<IActiveAlarms>();
    Done(fault_interface_get_active_alarms(handle, alarms.get()));
    std::ranges::for_each(alarms->alarms, [](auto const& alarm) { Free(alarm.time), Free(alarm.name); });
    auto const history = New<IAlarmHistory>();
    Done(fault_interface_get_alarm_history(handle, with.type, with.value % 8, history.get()));
    std::ranges::for_each(history->alarms, [](auto const& alarm) { Free(alarm.time), Free(alarm.name); });
}

void State(ControllerHandle handle, Records& with) {
    auto const state = New<ControllerStateData>();
    Done(controller_state_interface_read_state(handle, state.get()));
    auto const info = New<ISystemInfoData>();
    auto const status = controller_state_interface_read_system_information(handle, with.type, info.get());
    Done(status, info->softwareVersion, info->modelName);
    int value = 0;
    Done(
        controller_state_group_read_system_param(handle, with.type, static_cast<int>(with.number), with.group, &value));
}

void Jobs(ControllerHandle handle, Records& with) {
    Done(job_interface_set_active_job(handle, with.text.data(), with.value));
    auto const job = New<IJobData>();
    auto const status = job_interface_get_executing_job_information(handle, with.type, job.get());
    Done(status, job->name);
    auto const stack = New<IJobStack>();
    Done(job_interface_get_job_stack(handle, with.type, stack.get()));
    std::ranges::for_each(std::bit_cast<std::array<char*, 12>>(*stack), Free);
}

void Files(ControllerHandle handle, Records& with) {
    IStatusInfo status{};
    char* text = file_interface_SaveFromControllerToString(handle, with.text.data(), &status);
    Done(status, text);
    Done(file_interface_LoadToControllerFromString(handle, with.text.data(), with.text.data()));
    text = file_interface_ListFiles(handle, with.type, &status, with.value % 2 != 0);
    Done(status, text);
}

void Signals(ControllerHandle handle, Records& with) {
    auto const group = static_cast<std::uint16_t>(with.number);
    auto const bit = static_cast<std::uint8_t>(with.value);
    int value = 0;
    Done(io_interface_type_ReadBit(handle, with.type, group, bit, &value));
    Require(value == 0 || value == 1, "a bit is 0 or 1");
    unsigned word = 0;
    Done(io_interface_address_ReadWord(handle, with.number, &word));
    Done(io_interface_uint32_ReadRegister(handle, group, &word));
    Require(word <= 0xFFFF, "a word has 16 bits");
    Done(io_interface_address_WriteWord(handle, with.number, with.value));
}

void Motions(ControllerHandle handle, Records& with) {
    auto const others = New<Motion>();
    *others = with.motion.motion;
    Done(motion_manager_AddPointToTrajectory(handle, &with.motion.motion));
    Done(motion_manager_Add4PointsToTrajectory(handle, &with.motion.motion, others.get(), others.get(), others.get()));
    IStatusInfo status{};
    motion_manager_GetMotionTargetProgress(handle, with.group, &status);
    Done(status);
    Done(motion_manager_MotionStart(handle));
    std::uint64_t number = 0;
    Done(harvlink_motion_add(handle, &number, &with.motion.motion, others.get(), nullptr, nullptr));
    Done(harvlink_motion_wait_for_target(handle, number, 0, with.motion.auxiliaryAxes[0]));
}

void Conversions(ControllerHandle handle, Records& with) {
    auto const result = New<PositionData>();
    Done(kinematics_interface_ConvertPosition(handle, with.group, &with.position, with.type, result.get()));
    Done(kinematics_interface_ConvertPositionFromCartesian(handle, with.group, &with.position, with.type,
                                                           static_cast<KinematicType>(with.value),
                                                           with.motion.auxiliaryAxes, result.get()));
}

constexpr std::array families{Variables, Positions, Alarms, State, Jobs, Files, Signals, Motions, Conversions};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    auto const family = families.at(input.Take<std::uint8_t>() % families.size());
    Session session(input.Take<std::uint8_t>());
    auto records = input.Take<Records>();
    records.text.back() = '\0';
    session.SetAnswers(TakeAnswers(input));
    ControllerCell cell{&session.robot};
    family(&cell, records);
    return 0;
}
