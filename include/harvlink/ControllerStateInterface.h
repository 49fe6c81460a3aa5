#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "harvlink/ControlGroupId.h"
#include "harvlink/Export.h"
#include "harvlink/StatusInfo.h"

namespace harvlink {

/// How a started job runs: one instruction, once to its end, or again and again.
enum class CycleMode : std::int32_t { Step = 0, Cycle = 1, Automatic = 2 };

/// The state of the controller as a whole, at the moment of the read.
struct ControllerStateData {
    /// From where the controller takes commands: the pendant, the panel, or a program like this one.
    enum class ControlMode : std::int32_t { Teach = 0, Play = 1, Remote = 2 };

    CycleMode cycleMode{};
    bool isRunning = false;
    ControlMode controlMode{};
    bool isProgramPendantHold = false; ///< any hold: pendant, external or commanded
    bool isAlarming = false;
    bool isErroring = false;
    bool isServoOn = false;
};

/// Both texts keep the whole length of their field on the wire (24 and 16 characters), zero bytes included.
struct SystemInfoData {
    std::string softwareVersion;
    std::string modelName;
};

/// A span of time as the controller counts it.
struct ElapsedTime {
    std::uint32_t seconds = 0;
    std::uint32_t minutes = 0;
    std::uint32_t hours = 0;
};

/// When the controller began to count, and the time it has counted since.
struct TimeData {
    /// Seconds since the epoch; the controller's local time read in this computer's zone.
    std::int64_t startTimeEpoch = 0;
    ElapsedTime elapsedTime{};
};

/// The item that ReadSystemInformation reads. The numbers are the controller's; cast any other number it may know.
enum class SystemInfoId : std::int32_t {
    Robot1 = 11,
    Robot2 = 12,
    Robot3 = 13,
    Robot4 = 14,
    Robot5 = 15,
    Robot6 = 16,
    Robot7 = 17,
    Robot8 = 18,
    Station1 = 21,
    Station2 = 22,
    Station3 = 23,
    Application1 = 101,
    Application2 = 102,
    Application3 = 103,
    Application4 = 104,
    Application5 = 105,
    Application6 = 106,
    Application7 = 107,
    Application8 = 108,
};

/// An operating time counter. `...Robot` needs a robot group and `...Station` a station group; the others ignore the
/// group. The station counter of the moving time is 221: there is no 220.
enum class TimeType : std::int32_t {
    ControlPower = 1,
    ServoPowerTotal = 10,
    ServoPowerRobot = 11,
    ServoPowerStation = 20,
    PlaybackTotal = 110,
    PlaybackRobot = 111,
    PlaybackStation = 120,
    MovingTotal = 210,
    MovingRobot = 211,
    MovingStation = 221, ///< not 220, as one would expect
    Application = 300, ///< of the application given by number
};

/// Used with TimeType::Application. The numbers are the controller's; cast any other number it may know.
enum class ApplicationNumber : std::int32_t {
    None = 0,
    Application1 = 1,
    Application2 = 2,
    Application3 = 3,
    Application4 = 4,
    Application5 = 5,
    Application6 = 6,
    Application7 = 7,
    Application8 = 8,
};

/// Family of a system parameter. The numbers are the controller's; cast any other number it may know.
/// Types 0, 5 and 6 belong to a control group and are read with the overload that takes one.
enum class SystemParameterType : std::int32_t {
    S1C = 0, ///< per group
    S2C = 1,
    S3C = 2,
    S4C = 3,
    RS = 4,
    S1E = 5, ///< per group
    S2E = 6, ///< per group
    MotionSlot = 11, ///< numbers 33 to 36 name the groups of the four motion slots
};

/// Reads that concern the controller as a whole. Each is one exchange and takes at most (1 + retries) x time-out; a
/// call whose arguments the library refuses sends nothing. Every operation may be called from several threads at once;
/// exchanges queue.
///
/// Besides the codes named at an operation, all return ResponseTimeout if no answer comes and the controller's own
/// code if it refuses. Outputs are cleared first and stay cleared on failure. Reading again is always safe.
class ControllerStateInterface {
public:
    ControllerStateInterface() = default;
    ControllerStateInterface(ControllerStateInterface const&) = delete;
    ControllerStateInterface& operator=(ControllerStateInterface const&) = delete;
    virtual ~ControllerStateInterface() = default;

    /// Reads mode, running, hold, alarm, error and servo state.
    virtual StatusInfo ReadState(ControllerStateData& state) = 0;

    /// Reads software version and model name. An id that the controller does not know gives code 45063.
    virtual StatusInfo ReadSystemInformation(SystemInfoId id, SystemInfoData& data) = 0;

    /// Reads one operating time counter. A `type` that does not exist or does not fit `group` gives code 40961 and sends
    /// nothing; a group that the controller does not have gives its code 51200 or 40961 with an explaining text.
    /// Throws std::invalid_argument or std::out_of_range if the controller's answer holds no readable time; with
    /// Rule::NoExceptions, that gives UnreadableTime and `data` is cleared.
    virtual StatusInfo ReadOperatingTimes(ControlGroupId group, TimeType type, TimeData& data,
                                          ApplicationNumber application) = 0;

    /// Reads a system parameter of the whole controller. Types 0, 5 and 6 give SystemParameterNeedsGroup; an unknown
    /// parameter InvalidSystemParameter; a controller older than `VersionYA` UnsupportedOnThisController.
    virtual StatusInfo ReadSystemParam(SystemParameterType type, int number, int& value) = 0;

    /// Reads a system parameter of a group, by the controller's number of the group. As above, but every type is taken;
    /// an unknown group gives InvalidSystemParameterGroup.
    virtual StatusInfo ReadSystemParam(SystemParameterType type, int number, int group, int& value) = 0;
};

/// Text forms, several lines each, without a line end at the close.
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, ControllerStateData const& state);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, SystemInfoData const& data);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, ElapsedTime const& time);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, TimeData const& data);

} // namespace harvlink
