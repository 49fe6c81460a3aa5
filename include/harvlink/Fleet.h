#pragma once

#include <chrono>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "harvlink/ConnectOptions.h"
#include "harvlink/ControlGroupId.h"
#include "harvlink/ControlGroupInterface.h"
#include "harvlink/ControllerStateInterface.h"
#include "harvlink/ControllerVersion.h"
#include "harvlink/Export.h"
#include "harvlink/FaultInterface.h"
#include "harvlink/JobInterface.h"
#include "harvlink/PositionData.h"
#include "harvlink/StatusInfo.h"

/// @file
/// A fleet: one thread watches any number of controllers. It only reads. Nothing that it sends changes anything on a
/// controller, opening included, and all rules of a strict connection hold for every answer.

namespace harvlink {

/// The kinds of value that a fleet reads, with what FleetItem::index means and the alternative of FleetValue that comes.
enum class FleetItemKind : std::int32_t {
    State = 0, ///< ControllerStateData
    Job = 1, ///< what the task `index` executes, from 0; JobData
    Alarms = 2, ///< the four places, four exchanges; ActiveAlarms
    Position = 3, ///< of `group` in `coordinate`; PositionData, or with `axis` a double
    Torque = 4, ///< of `group`; TorqueData, or with `axis` an integer
    PositionError = 5, ///< of `group`, pulses; PositionErrorData, or with `axis` an integer
    ByteVariable = 6, ///< number `index`, 0 to 2048, and `count` - 1 more; an integer
    IntegerVariable = 7, ///< the same
    DoubleIntVariable = 8, ///< the same
    RealVariable = 9, ///< the same; a double
    StringVariable = 10, ///< the same; std::string
    RobotPositionVariable = 11, ///< the same; PositionData
    BasePositionVariable = 12, ///< the same; PositionData
    StationPositionVariable = 13, ///< the same; PositionData
    Signal = 14, ///< at address `index`, and `count` - 1 more behind it; bool
    SignalGroup = 15, ///< eight signals from address `index`, a multiple of 10, and `count` - 1 more groups; an integer
    Register = 16, ///< number `index`, and `count` - 1 more; an integer
    OperatingTime = 17, ///< the TimeType `index` of `group`, or of the ApplicationNumber `detail`; TimeData
    Software = 18, ///< the SystemInfoId `index`; SystemInfoData
    TargetProgress = 19, ///< of the motion slot `index`, 0 to 3, from `VersionYA` up; a double
};

/// One thing to read. The functions below make one; the members are there for programs that get them from a file.
struct FleetItem {
    FleetItemKind kind = FleetItemKind::State;
    std::uint32_t index = 0; ///< see FleetItemKind
    std::uint32_t count = 1; ///< variables, registers, signals or signal groups in a row; 1 for all other kinds
    ControlGroupId group = ControlGroupId::R1;
    CoordinateType coordinate = CoordinateType::Pulse;
    std::uint8_t toolNumber = 0; ///< of a position; other than 0 from `VersionYA` up
    std::uint8_t userCoordinateNumber = 0; ///< of a position in user coordinates, 1 to 63
    std::int32_t axis = -1; ///< 0 to 7 for that axis of a position, torque or position error alone; -1 for all of them
    std::int32_t detail = 0; ///< see FleetItemKind::OperatingTime
    /// In a group with `onChange`: a number, and each axis of a position, has changed when it is further than this from what
    /// was reported last. 0: at any difference.
    double deadBand = 0.0;

    /// Mode, cycle, servo, hold, alarm and whether a job runs.
    static FleetItem State() { return {}; }
    /// Name, line, step and speed of the job that the task executes.
    static FleetItem Job(TesselTaskNumber task = TesselTaskNumber::Master) {
        return {.kind = FleetItemKind::Job, .index = static_cast<std::uint32_t>(task)};
    }
    /// The active alarms, four exchanges.
    static FleetItem Alarms() { return {.kind = FleetItemKind::Alarms}; }
    /// Where a group is, or one axis of it from 0 on; -1 stands for all axes here and below.
    static FleetItem Position(ControlGroupId group, CoordinateType coordinate = CoordinateType::Pulse,
                              std::int32_t axis = -1) {
        return {.kind = FleetItemKind::Position, .group = group, .coordinate = coordinate, .axis = axis};
    }
    /// The load of the axes of a group.
    static FleetItem Torque(ControlGroupId group, std::int32_t axis = -1) {
        return {.kind = FleetItemKind::Torque, .group = group, .axis = axis};
    }
    /// How far the axes of a group are from where they should be, in pulses.
    static FleetItem PositionError(ControlGroupId group, std::int32_t axis = -1) {
        return {.kind = FleetItemKind::PositionError, .group = group, .axis = axis};
    }
    /// One of the kinds of variable, or `count` of them in a row.
    static FleetItem Variable(FleetItemKind kind, std::uint32_t index, std::uint32_t count = 1) {
        return {.kind = kind, .index = index, .count = count};
    }
    /// A signal, or `count` of them in a row.
    static FleetItem Signal(std::uint32_t address, std::uint32_t count = 1) {
        return {.kind = FleetItemKind::Signal, .index = address, .count = count};
    }
    /// Eight signals as one number, or `count` such groups in a row. The address is a multiple of 10.
    static FleetItem SignalGroup(std::uint32_t address, std::uint32_t count = 1) {
        return {.kind = FleetItemKind::SignalGroup, .index = address, .count = count};
    }
    /// A register, or `count` of them in a row.
    static FleetItem Register(std::uint32_t index, std::uint32_t count = 1) {
        return {.kind = FleetItemKind::Register, .index = index, .count = count};
    }
    /// How long the controller, a group or an application has worked.
    static FleetItem OperatingTime(TimeType type, ControlGroupId group = ControlGroupId::R1,
                                   ApplicationNumber application = ApplicationNumber::None) {
        return {.kind = FleetItemKind::OperatingTime,
                .index = static_cast<std::uint32_t>(type),
                .group = group,
                .detail = static_cast<std::int32_t>(application)};
    }
    /// Versions and model.
    static FleetItem Software(SystemInfoId id = SystemInfoId::Robot1) {
        return {.kind = FleetItemKind::Software, .index = static_cast<std::uint32_t>(id)};
    }
    /// How far the target of a motion slot, 0 to 3, is done.
    static FleetItem TargetProgress(std::uint32_t slot = 0) {
        return {.kind = FleetItemKind::TargetProgress, .index = slot};
    }
};

/// Writes the short name of an item, such as "state", "job 0", "position R1 base", "B005", "signal 10010" or "register 3";
/// "B005 x 20" for a row, "position R1 pulse axis 2" for one axis.
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, FleetItem const& item);

/// Items that are read together, in rounds. Items that one datagram answers share it: the signals of a group of eight, the
/// axes of one position.
struct FleetGroup {
    /// From the start of a round to that of the next: 1 millisecond to 24 hours. The rounds do not drift. A group that can't
    /// finish within its period goes on as fast as it can and counts overruns; its rounds never queue.
    std::chrono::nanoseconds period = std::chrono::seconds(1);
    std::vector<FleetItem> items;
    bool onChange = false; ///< samples only of what has changed; the latest values are kept all the same
    std::chrono::milliseconds longestSilence{0}; ///< with `onChange`: a sample at the latest after this; 0: no limit
};

/// How a fleet talks to one controller.
struct FleetControllerOptions {
    std::string address; ///< IPv4 address in dotted form, or the name of a host, which Add and Change resolve
    unsigned timeout = 500; ///< milliseconds until an unanswered read is asked again; 1 to 3600000
    unsigned retries = 3; ///< further requests before the read fails; at most 1000
    unsigned lanes = 1; ///< reads in flight at once, 1 to 4, for controllers that answer slowly; a socket each
    std::chrono::microseconds gap{0}; ///< least time between two requests, for a controller that needs rest
    double mostRequestsPerSecond = 0.0; ///< of all groups together, evenly spaced; 0: no limit
    /// If it is known: items that this generation does not have are refused by Add. The fleet asks the controller in any case.
    ControllerVersion generation = ControllerVersion::VersionUnknown;
};

/// What the link to a controller is like.
enum class FleetState : std::int32_t {
    Connecting = 0, ///< it has not answered yet, or its generation and axes are still being read
    Online = 1,
    Late = 2, ///< the last read is not answered in time, and is asked again
    Silent = 3, ///< three time-outs in a row, and a read failed; asked again after pauses of 0.5 s to 30 s
    Refused = 4, ///< nobody listens at its port, it refuses to say what it is, or this computer has no socket for it
};

/// What a value is worth.
enum class FleetQuality : std::int32_t {
    Good = 0,
    Refused = 1, ///< `code` says why; there is no value
    Stale = 2, ///< the controller does not answer: the value is the last one that it gave
    NeverRead = 3,
};

/// A value as FleetItemKind says; empty if there is none.
using FleetValue = std::variant<std::monostate, bool, std::int64_t, double, std::string, ControllerStateData, JobData,
                                ActiveAlarms, PositionData, TorqueData, PositionErrorData, TimeData, SystemInfoData>;

/// One value of one item.
struct FleetSample {
    std::string controller; ///< its name
    std::uint32_t group = 0; ///< place in the groups of the controller
    FleetItem item; ///< of a row the one element: `index` is its own, `count` is 1
    FleetQuality quality = FleetQuality::NeverRead;
    std::int32_t code = 0; ///< 0, or why there is no new value: as the interface that reads the same would return it
    FleetValue value;
    std::chrono::system_clock::time_point requestTime{}; ///< when the request left, by the clock of this computer
    std::chrono::system_clock::time_point answerTime{}; ///< when the answer was read
};

/// What happened to a controller, for those who do not want to compare samples.
enum class FleetEventKind : std::int32_t {
    StateChanged = 0, ///< `before` and `after` are FleetStates; the status says why
    AlarmRaised = 1, ///< seen in State or in Alarms; in Alarms `after` is the code and the text its name
    AlarmCleared = 2,
    ServoOn = 3, ///< seen in State, as the next four
    ServoOff = 4,
    ControlModeChanged = 5, ///< teach, play, remote: ControllerStateData::ControlMode
    CycleModeChanged = 6, ///< CycleMode
    JobChanged = 7, ///< seen in Job; the text is the new name
    ModelChanged = 8, ///< another controller answers at the address since it was silent; the text says which
    SoftwareChanged = 9, ///< the same, for its software version
    ItemRefused = 10, ///< the controller can't read an item because of its generation; the text names it
    RanOver = 11, ///< the first round of a group that took longer than its period; `after` is the group
};

/// One event.
struct FleetEvent {
    std::string controller;
    FleetEventKind kind = FleetEventKind::StateChanged;
    std::chrono::system_clock::time_point time{};
    std::int64_t before = 0;
    std::int64_t after = 0;
    std::int32_t code = 0; ///< of a status, 0 if there is none
    std::string text; ///< at most 47 bytes
};

/// What a group costs.
struct FleetGroupPlan {
    std::chrono::nanoseconds period{};
    std::uint32_t items = 0; ///< with rows spread out
    std::uint32_t exchangesPerRound = 0;
};

/// What a controller costs.
struct FleetControllerPlan {
    std::string controller;
    double exchangesPerSecond = 0.0;
    /// The mean round trip up to which all its periods can be kept. 0 if its gap or its limit of requests rules that out.
    std::chrono::nanoseconds longestRoundTrip{};
    std::vector<FleetGroupPlan> groups;
};

/// What all controllers together cost, computed before anything is sent.
struct FleetPlan {
    double exchangesPerSecond = 0.0;
    std::uint32_t descriptors = 0; ///< sockets and what the engine needs, once all controllers are online
    std::vector<FleetControllerPlan> controllers;
};

/// Statistics of a group.
struct FleetGroupStatistics {
    std::uint64_t rounds = 0; ///< that were completed
    std::uint64_t overruns = 0; ///< rounds that were not finished when the next one was due
    double effectiveRate = 0.0; ///< rounds a second, over the last rounds
    std::chrono::nanoseconds lastRound{}; ///< from its first request to its last answer
};

/// Statistics of a controller.
struct FleetControllerStatistics {
    std::string controller;
    FleetState state = FleetState::Connecting;
    std::chrono::system_clock::time_point stateSince{};
    std::uint64_t exchanges = 0; ///< answered or failed
    std::uint64_t timeouts = 0; ///< reads that failed for want of an answer
    std::uint64_t repeatedRequests = 0;
    std::uint64_t lateAnswers = 0; ///< their number is not that of the read that waits, or no read waits
    std::uint64_t malformedAnswers = 0;
    std::uint64_t refusals = 0;
    std::uint64_t startUps = 0; ///< times that its generation and axes were read
    std::vector<FleetGroupStatistics> groups;
};

/// Statistics of the fleet.
struct FleetStatistics {
    std::uint64_t samples = 0; ///< put into the queue since the start
    std::uint64_t droppedSamples = 0; ///< that nobody took in time
    std::uint64_t droppedEvents = 0;
    std::uint64_t systemCalls = 0; ///< of the engine's thread on sockets and waits
    std::uint64_t pauses = 0; ///< times that the engine itself did not run for more than 50 ms
    std::vector<FleetControllerStatistics> controllers;
};

/// Sizes of a fleet.
struct FleetOptions {
    std::uint32_t queueCapacity = 16384; ///< samples that wait to be taken; rounded up to a power of two, at most 2^24
    std::uint32_t eventCapacity = 4096; ///< at most 2^20
};

/// Watches controllers from one thread of its own.
///
///     harvlink::Fleet fleet;
///     fleet.Add("press1", {.address = "192.168.1.31"}, {{.period = 100ms, .items = {FleetItem::State()}}});
///     fleet.Start();
///     std::array<harvlink::FleetSample, 64> samples;
///     while (auto const count = fleet.Take(samples, 1s)) { ... }
///
/// All operations may be called from any thread at any time, but for construction and destruction. Samples that several
/// threads take are split among them. No operation raises an exception; where memory ends, they return OutOfMemory or less.
class HARVLINK_EXPORT Fleet {
public:
    /// Watches nothing yet, and has no thread until Start.
    explicit Fleet(FleetOptions const& options = {});
    Fleet(Fleet const&) = delete;
    Fleet& operator=(Fleet const&) = delete;
    /// Stops.
    ~Fleet();

    /// Adds a controller, before the start or later. Sends it nothing itself. A name of a host is resolved here, in (1 +
    /// retries) x time-out at most; NameNotResolved if it can't be.
    ///
    /// InvalidFleet, and nothing has changed, if the name is empty, longer than 63 bytes or taken; the address is not one of a
    /// host or is watched already; an option is out of range; there is no group or more than 16; a period is below 1 ms; an
    /// item does not exist or, if its generation is given, the controller does not have it. The text names the controller and
    /// the item.
    StatusInfo Add(std::string const& name, FleetControllerOptions const& options,
                   std::vector<FleetGroup> const& groups);

    /// Replaces options and groups of a controller. Its values are read again. UnknownFleetController for a name that is not
    /// there; InvalidFleet as for Add, and it goes on as before.
    StatusInfo Change(std::string const& name, FleetControllerOptions const& options,
                      std::vector<FleetGroup> const& groups);

    /// Ends watching a controller. Its samples that wait are dropped. UnknownFleetController for a name that is not there.
    StatusInfo Remove(std::string const& name);

    /// What all that costs. Sends nothing.
    FleetPlan Plan() const;

    /// Begins to read. SystemFailure if this computer gives no thread or no descriptor for it. "OK" if it runs already.
    StatusInfo Start();

    /// Ends reading within one round of the loop. What waits to be taken stays; Start may follow.
    void Stop();

    /// Moves the oldest samples into `samples` and returns how many, after waiting for the first for at most `wait`. 0 if
    /// none came. When the queue is full, the oldest are dropped and counted.
    std::size_t Take(std::span<FleetSample> samples, std::chrono::milliseconds wait);

    /// The same for events.
    std::size_t TakeEvents(std::span<FleetEvent> events, std::chrono::milliseconds wait);

    /// The last value of each item, of all controllers or of one; empty for a name that is not there. Value, quality and times
    /// of each item belong together. Never holds up the engine.
    /// @{
    std::vector<FleetSample> Latest() const;
    std::vector<FleetSample> Latest(std::string const& name) const;
    /// @}

    /// Counts since the start, of the engine and of each controller.
    FleetStatistics Statistics() const;

private:
    class Implementation;
    std::unique_ptr<Implementation> implementation;
};

} // namespace harvlink
