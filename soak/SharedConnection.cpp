#include "soak/SharedConnection.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace harvlink::soak {

namespace {

constexpr int MaxTimeouts = 20;
constexpr int MaxAttempts = 200;
constexpr std::uint16_t OldestLastIndex = 99; ///< of byte variables of the older generation
constexpr std::uint16_t NewestLastIndex = 511;
constexpr std::uint16_t UnusedPosition = 100; ///< a position variable that no worker uses

/// Repeats a call while answers are missing.
template <typename Call>
bool Succeeds(Results& results, Family family, Call const& call) {
    for (int tries = 0; tries < MaxTimeouts; ++tries) {
        auto const status = call();
        results.Note(family, status);
        if (!IsTimeout(status)) {
            return status.StatusCode == 0;
        }
    }
    return false;
}

bool KnowsGroups(QuorvanController& robot, Results& results) {
    constexpr std::array groups{ControlGroupId::R1, ControlGroupId::B1, ControlGroupId::S1};
    return std::ranges::all_of(groups, [&](ControlGroupId group) {
        PositionData position;
        return Succeeds(results, Family::ControlGroup, [&] {
            return robot.ControlGroup->ReadPositionData(group, CoordinateType::Pulse, 0, 0, position);
        });
    });
}

bool KnowsTools(QuorvanController& robot, int highest, Results& results) {
    RobotPositionVariableData variable{.positionData = {.toolNumber = highest}, .variableIndex = UnusedPosition};
    return Succeeds(results, Family::Variables,
                    [&] { return robot.Variables->robotPositionVariable->Write(variable); });
}

/// The last variable can be read only if the first index is right.
bool CountsVariables(QuorvanController& robot, bool isExtended, Results& results) {
    ByteVariableData variable;
    auto const last = isExtended ? NewestLastIndex : OldestLastIndex;
    return Succeeds(results, Family::Variables, [&] { return robot.Variables->byteVariable->Read(last, variable); });
}

/// Reads their progress, which works only for slots that the connection knows.
bool KnowsMotionSlots(QuorvanController& robot, Results& results) {
    StatusInfo status;
    constexpr std::array groups{ControlGroupId::R1, ControlGroupId::B1, ControlGroupId::S1};
    return std::ranges::all_of(groups, [&](ControlGroupId group) {
        return Succeeds(results, Family::MotionManager, [&] {
            static_cast<void>(robot.MotionManager->GetMotionTargetProgress(group, status));
            return status;
        });
    });
}

bool IsComplete(QuorvanController& robot, bool isExtended, Options const& options, Results& results) {
    return KnowsGroups(robot, results) && KnowsTools(robot, options.HighestTool(), results) &&
           CountsVariables(robot, isExtended, results) && (!isExtended || KnowsMotionSlots(robot, results));
}

} // namespace

Connection OpenComplete(std::string const& address, bool isExtended, Options const& options, FaultJournal& journal,
                        Results& results) {
    auto const damagesBefore = journal.Counts();
    ConnectOptions asked;
    asked.address = address;
    asked.timeout = Options::TimeoutMilliseconds;
    asked.retries = Options::Retries;
    asked.access = Access::Full;
    StatusInfo status;
    auto robot = Connect(asked, status);
    results.Note(Family::Connection, status);
    if (robot != nullptr && (journal.Counts() != damagesBefore || !IsComplete(*robot, isExtended, options, results))) {
        robot.reset();
    }
    if (robot == nullptr) {
        results.Note(FaultEffect::IncompleteStart);
    }
    return robot;
}

Connection OpenWithRetries(SharedConnection const& connection, Options const& options, Results& results) {
    for (int tries = 0; tries < MaxAttempts; ++tries) {
        if (auto robot =
                OpenComplete(connection.address, connection.isExtended, options, *connection.journal, results)) {
            return robot;
        }
    }
    throw std::runtime_error("no connection to " + connection.address);
}

} // namespace harvlink::soak
