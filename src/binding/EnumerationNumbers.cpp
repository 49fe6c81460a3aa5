#include <cstdint>

#include "harvlink/harvlink.h"
#include "harvlink/harvlink_c.h"

// The plain constants are the numbers of their C++ twins.

namespace {

template <typename Enumeration>
constexpr bool Same(int plain, Enumeration value) {
    return sizeof(Enumeration) == sizeof(std::int32_t) && plain == static_cast<std::int32_t>(value);
}

static_assert(Same(HARVLINK_ROBOT(1), harvlink::ControlGroupId::R1));
static_assert(Same(HARVLINK_ROBOT(8), harvlink::ControlGroupId::R8));
static_assert(Same(HARVLINK_BASE(1), harvlink::ControlGroupId::B1));
static_assert(Same(HARVLINK_BASE(8), harvlink::ControlGroupId::B8));
static_assert(Same(HARVLINK_STATION(1), harvlink::ControlGroupId::S1));
static_assert(Same(HARVLINK_STATION(24), harvlink::ControlGroupId::S24));

static_assert(Same(HARVLINK_PULSE, harvlink::CoordinateType::Pulse));
static_assert(Same(HARVLINK_BASE_COORDINATE, harvlink::CoordinateType::BaseCoordinate));
static_assert(Same(HARVLINK_ROBOT_COORDINATE, harvlink::CoordinateType::RobotCoordinate));
static_assert(Same(HARVLINK_TOOL_COORDINATE, harvlink::CoordinateType::ToolCoordinate));
static_assert(Same(HARVLINK_USER_COORDINATE, harvlink::CoordinateType::UserCoordinate));
static_assert(Same(HARVLINK_MASTER_TOOL, harvlink::CoordinateType::MasterTool));
static_assert(Same(HARVLINK_UNDEFINED_COORDINATE, harvlink::CoordinateType::Undefined));
static_assert(Same(HARVLINK_JOINT_ANGLE, harvlink::CoordinateType::JointAngle));

static_assert(Same(HARVLINK_FRONT, harvlink::FrontOrBack::Front));
static_assert(Same(HARVLINK_BACK, harvlink::FrontOrBack::Back));

static_assert(Same(HARVLINK_UPPER, harvlink::UpperOrLower::Upper));
static_assert(Same(HARVLINK_LOWER, harvlink::UpperOrLower::Lower));

static_assert(Same(HARVLINK_FLIP, harvlink::FlipOrNoFlip::Flip));
static_assert(Same(HARVLINK_NO_FLIP, harvlink::FlipOrNoFlip::NoFlip));

static_assert(Same(HARVLINK_LESS_THAN_180, harvlink::AxisAngle::LessThan180));
static_assert(Same(HARVLINK_GREATER_THAN_180, harvlink::AxisAngle::GreaterThan180));

static_assert(Same(HARVLINK_STEP, harvlink::CycleMode::Step));
static_assert(Same(HARVLINK_CYCLE, harvlink::CycleMode::Cycle));
static_assert(Same(HARVLINK_AUTOMATIC, harvlink::CycleMode::Automatic));

static_assert(Same(HARVLINK_TEACH, harvlink::ControllerStateData::ControlMode::Teach));
static_assert(Same(HARVLINK_PLAY, harvlink::ControllerStateData::ControlMode::Play));
static_assert(Same(HARVLINK_REMOTE, harvlink::ControllerStateData::ControlMode::Remote));

static_assert(Same(HARVLINK_INFO_ROBOT(1), harvlink::SystemInfoId::Robot1));
static_assert(Same(HARVLINK_INFO_ROBOT(8), harvlink::SystemInfoId::Robot8));
static_assert(Same(HARVLINK_INFO_STATION(1), harvlink::SystemInfoId::Station1));
static_assert(Same(HARVLINK_INFO_STATION(3), harvlink::SystemInfoId::Station3));
static_assert(Same(HARVLINK_INFO_APPLICATION(1), harvlink::SystemInfoId::Application1));
static_assert(Same(HARVLINK_INFO_APPLICATION(8), harvlink::SystemInfoId::Application8));

static_assert(Same(HARVLINK_S1C, harvlink::SystemParameterType::S1C));
static_assert(Same(HARVLINK_S2C, harvlink::SystemParameterType::S2C));
static_assert(Same(HARVLINK_S3C, harvlink::SystemParameterType::S3C));
static_assert(Same(HARVLINK_S4C, harvlink::SystemParameterType::S4C));
static_assert(Same(HARVLINK_RS, harvlink::SystemParameterType::RS));
static_assert(Same(HARVLINK_S1E, harvlink::SystemParameterType::S1E));
static_assert(Same(HARVLINK_S2E, harvlink::SystemParameterType::S2E));
static_assert(Same(HARVLINK_MOTION_SLOT, harvlink::SystemParameterType::MotionSlot));

static_assert(Same(HARVLINK_CONTROL_POWER_TIME, harvlink::TimeType::ControlPower));
static_assert(Same(HARVLINK_SERVO_POWER_TIME, harvlink::TimeType::ServoPowerTotal));
static_assert(Same(HARVLINK_SERVO_POWER_TIME_ROBOT, harvlink::TimeType::ServoPowerRobot));
static_assert(Same(HARVLINK_SERVO_POWER_TIME_STATION, harvlink::TimeType::ServoPowerStation));
static_assert(Same(HARVLINK_PLAYBACK_TIME, harvlink::TimeType::PlaybackTotal));
static_assert(Same(HARVLINK_PLAYBACK_TIME_ROBOT, harvlink::TimeType::PlaybackRobot));
static_assert(Same(HARVLINK_PLAYBACK_TIME_STATION, harvlink::TimeType::PlaybackStation));
static_assert(Same(HARVLINK_MOVING_TIME, harvlink::TimeType::MovingTotal));
static_assert(Same(HARVLINK_MOVING_TIME_ROBOT, harvlink::TimeType::MovingRobot));
static_assert(Same(HARVLINK_MOVING_TIME_STATION, harvlink::TimeType::MovingStation));
static_assert(Same(HARVLINK_APPLICATION_TIME, harvlink::TimeType::Application));

static_assert(Same(HARVLINK_ALARM_MAJOR, harvlink::AlarmCategory::Major));
static_assert(Same(HARVLINK_ALARM_MINOR, harvlink::AlarmCategory::Minor));
static_assert(Same(HARVLINK_ALARM_SYSTEM_USER, harvlink::AlarmCategory::SystemUser));
static_assert(Same(HARVLINK_ALARM_USER, harvlink::AlarmCategory::User));
static_assert(Same(HARVLINK_ALARM_OFFLINE, harvlink::AlarmCategory::Offline));

static_assert(Same(HARVLINK_JOB_FILE, harvlink::FileType::JobFile));
static_assert(Same(HARVLINK_DATA_FILE, harvlink::FileType::DataFile));
static_assert(Same(HARVLINK_CONDITION_FILE, harvlink::FileType::ConditionFile));
static_assert(Same(HARVLINK_PARAMETER_FILE, harvlink::FileType::ParameterFile));
static_assert(Same(HARVLINK_SYSTEM_FILE, harvlink::FileType::SystemFile));
static_assert(Same(HARVLINK_LISTING_FILE, harvlink::FileType::ListingFile));
static_assert(Same(HARVLINK_LOG_FILE, harvlink::FileType::LogFile));

static_assert(Same(HARVLINK_GENERAL_INPUT, harvlink::IOType::GeneralInput));
static_assert(Same(HARVLINK_GENERAL_OUTPUT, harvlink::IOType::GeneralOutput));
static_assert(Same(HARVLINK_EXTERNAL_INPUT, harvlink::IOType::ExternalInput));
static_assert(Same(HARVLINK_NETWORK_INPUT, harvlink::IOType::NetworkInput));
static_assert(Same(HARVLINK_EXTERNAL_OUTPUT, harvlink::IOType::ExternalOutput));
static_assert(Same(HARVLINK_NETWORK_OUTPUT, harvlink::IOType::NetworkOutput));
static_assert(Same(HARVLINK_SPECIFIC_INPUT, harvlink::IOType::SpecificInput));
static_assert(Same(HARVLINK_SPECIFIC_OUTPUT, harvlink::IOType::SpecificOutput));
static_assert(Same(HARVLINK_INTERFACE_PANEL_INPUT, harvlink::IOType::InterfacePanelInput));
static_assert(Same(HARVLINK_AUXILIARY_RELAY, harvlink::IOType::AuxiliaryRelay));
static_assert(Same(HARVLINK_ROBOT_CONTROL_STATUS, harvlink::IOType::RobotControlStatus));
static_assert(Same(HARVLINK_PSEUDO_INPUT, harvlink::IOType::PseudoInput));

static_assert(Same(HARVLINK_ON, harvlink::SignalStatus::On));
static_assert(Same(HARVLINK_OFF, harvlink::SignalStatus::Off));

static_assert(Same(HARVLINK_NO_MOVE, harvlink::MoveInterpolationType::NoMove));
static_assert(Same(HARVLINK_JOINT, harvlink::MoveInterpolationType::Joint));
static_assert(Same(HARVLINK_LINE, harvlink::MoveInterpolationType::Line));
static_assert(Same(HARVLINK_CIRCLE, harvlink::MoveInterpolationType::Circle));

static_assert(Same(HARVLINK_MONITOR_NOT_STARTED, harvlink::TrajectoryMonitorState::NotStarted));
static_assert(Same(HARVLINK_MONITOR_IDLE, harvlink::TrajectoryMonitorState::Idle));
static_assert(Same(HARVLINK_MONITOR_SENDING, harvlink::TrajectoryMonitorState::Sending));
static_assert(Same(HARVLINK_MONITOR_HELD_BACK, harvlink::TrajectoryMonitorState::HeldBack));
static_assert(Same(HARVLINK_MONITOR_FAILED, harvlink::TrajectoryMonitorState::Failed));
static_assert(Same(HARVLINK_MONITOR_STOPPED, harvlink::TrajectoryMonitorState::Stopped));

static_assert(Same(HARVLINK_JOINT_ANGLE_TO_CARTESIAN_POS, harvlink::KinematicConversions::JointAngleToCartesianPos));
static_assert(Same(HARVLINK_PULSE_TO_JOINT_ANGLE, harvlink::KinematicConversions::PulseToJointAngle));
static_assert(Same(HARVLINK_JOINT_ANGLE_TO_PULSE, harvlink::KinematicConversions::JointAngleToPulse));
static_assert(Same(HARVLINK_PULSE_TO_CARTESIAN_POS, harvlink::KinematicConversions::PulseToCartesianPos));
static_assert(Same(HARVLINK_CARTESIAN_POS_TO_JOINT_ANGLE, harvlink::KinematicConversions::CartesianPosToJointAngle));
static_assert(Same(HARVLINK_CARTESIAN_POS_TO_PULSE, harvlink::KinematicConversions::CartesianPosToPulse));

static_assert(Same(HARVLINK_KINEMATIC_FROM_SYSTEM, harvlink::KinematicType::KinematicFromSystem));
static_assert(Same(HARVLINK_DELTA, harvlink::KinematicType::Delta));
static_assert(Same(HARVLINK_KINEMATIC_FIGURE, harvlink::KinematicType::KinematicFigure));

static_assert(Same(HARVLINK_OBSERVE, harvlink::Access::Observe));
static_assert(Same(HARVLINK_OPERATE, harvlink::Access::Operate));
static_assert(Same(HARVLINK_FULL, harvlink::Access::Full));
static_assert(Same(HARVLINK_ONLINE, harvlink::LinkState::Online));
static_assert(Same(HARVLINK_SILENT, harvlink::LinkState::Silent));
static_assert(Same(HARVLINK_RULE_SILENCE_IS_TIMEOUT, harvlink::Rule::SilenceIsTimeout));
static_assert(Same(HARVLINK_RULE_KNOWN_SENDER, harvlink::Rule::KnownSender));
static_assert(Same(HARVLINK_RULE_REPEAT_READS, harvlink::Rule::RepeatReads));
static_assert(Same(HARVLINK_RULE_FITTING_ANSWER, harvlink::Rule::FittingAnswer));
static_assert(Same(HARVLINK_RULE_DEADLINE, harvlink::Rule::Deadline));
static_assert(Same(HARVLINK_RULE_NEW_PORT, harvlink::Rule::NewPort));
static_assert(Same(HARVLINK_RULE_WHOLE_ANSWER, harvlink::Rule::WholeAnswer));
static_assert(Same(HARVLINK_RULE_BLOCK_ORDER, harvlink::Rule::BlockOrder));
static_assert(Same(HARVLINK_RULE_WHOLE_START_UP, harvlink::Rule::WholeStartUp));
static_assert(Same(HARVLINK_RULE_IDLE_MONITOR, harvlink::Rule::IdleMonitor));
static_assert(Same(HARVLINK_RULE_SENT_STEP, harvlink::Rule::SentStep));
static_assert(Same(HARVLINK_RULE_BOUNDED_CLOSE, harvlink::Rule::BoundedClose));
static_assert(Same(HARVLINK_RULE_NO_EXCEPTIONS, harvlink::Rule::NoExceptions));
static_assert(HARVLINK_NO_RULES == harvlink::NoRules.bits && HARVLINK_STRICT_RULES == harvlink::StrictRules.bits);

} // namespace
