#include "connection/QuorvanControllerImplementation.h"

#include <algorithm>
#include <array>

#include "connection/SystemFileParser.h"
#include "controller/ControlCommandsImplementation.h"
#include "controller/ControlGroupImplementation.h"
#include "controller/FaultImplementation.h"
#include "controller/JobImplementation.h"
#include "controller/StatusImplementation.h"
#include "files/FileHandler.h"
#include "harvlink/ConnectionStatistics.h"
#include "io/IOImplementation.h"
#include "kinematics/Kinematics.h"
#include "motion/MotionManager.h"
#include "variables/Rs022.h"
#include "variables/VariablesImplementation.h"
#include "wire/HelperFunction.h"

namespace harvlink {
namespace {

constexpr int emptyOrMissingFile = 58012;
constexpr int missingFile = 58035;
constexpr int mostRepeats = 3; ///< of a file that lost a block

/// What a controller without tools answers for their file: an answer like any other, not the lack of one.
bool IsAbsence(StatusInfo const& status) {
    return status.StatusCode == emptyOrMissingFile || status.StatusCode == missingFile;
}

/// Whether an answer was lost or damaged on the way.
bool IsLost(StatusInfo const& status) {
    auto const code = static_cast<ErrorStatusCodes>(status.StatusCode);
    return code == ErrorStatusCodes::ResponseTimeout || code == ErrorStatusCodes::FileBlockMissing ||
           code == ErrorStatusCodes::AnswerTooShort;
}

template <typename Interface>
void Delete(Interface*& interface) {
    delete interface;
    interface = nullptr;
}

} // namespace

QuorvanControllerImplementation::QuorvanControllerImplementation(std::string const& ipAddress,
                                                                 unsigned timeoutMilliseconds, unsigned retries,
                                                                 bool logging, StatusInfo& status,
                                                                 ConnectionPolicy const& policy)
    : QuorvanControllerImplementation(ipAddress, timeoutMilliseconds, retries, status, policy) {
    if (status.StatusCode == 0) {
        StartUp(logging, status);
    }
}

QuorvanControllerImplementation::QuorvanControllerImplementation(std::unique_ptr<DatagramTransport> transport,
                                                                 unsigned timeoutMilliseconds, unsigned retries,
                                                                 bool logging, StatusInfo& status,
                                                                 ConnectionPolicy const& policy)
    : QuorvanControllerImplementation(std::move(transport), timeoutMilliseconds, retries, status, policy) {
    if (status.StatusCode == 0) {
        StartUp(logging, status);
    }
}

template <typename Peer>
QuorvanControllerImplementation::QuorvanControllerImplementation(Peer&& peer, unsigned timeoutMilliseconds,
                                                                 unsigned retries, StatusInfo& status,
                                                                 ConnectionPolicy const& policy)
    : networkManager(std::forward<Peer>(peer), timeoutMilliseconds, retries, status, policy) {}

QuorvanControllerImplementation::~QuorvanControllerImplementation() {
    Delete(ControlGroup);
    Delete(Faults);
    Delete(Status);
    Delete(Variables);
    Delete(Files);
    Delete(Job);
    Delete(IO);
    Delete(ControlCommands);
    Delete(QuorvanController::MotionManager);
    Delete(QuorvanController::Kinematics);
}

void QuorvanControllerImplementation::StartUp(bool logging, StatusInfo& status) {
    Status = new StatusImplementation(&networkManager);
    Files = new FileHandler(&networkManager);
    auto const rs22State = ReadRS22State(status);
    if (FailsByGap(status)) {
        return;
    }
    if (!rs22State) {
        status = StatusInformation(ErrorStatusCodes::ControllerObjectCreationFailed);
        return;
    }
    int const numberOfToolFiles = GetNumberOfToolFiles();
    if (FailsByGap(status)) {
        return;
    }
    CreateInterfaces(*rs22State, numberOfToolFiles);
    networkManager.SetLogging(logging);
    if (FailsByGap(status)) {
        return;
    }
    GetAttachedControlGroups();
    if (FailsByGap(status)) {
        return;
    }
    if (Gap().StatusCode != 0) {
        networkManager.Refuses(Rule::WholeStartUp);
    }
    networkManager.EndStartUp();
    status = StatusInformation(ErrorStatusCodes::Ok);
}

void QuorvanControllerImplementation::NoteGap(StatusInfo const& status) {
    if (gap.StatusCode == 0) {
        gap = status;
    }
}

/// A lost answer comes first: it is why a file could not be read, too.
StatusInfo const& QuorvanControllerImplementation::Gap() const {
    StatusInfo const& loss = networkManager.LossOfStartUp();
    return loss.StatusCode != 0 ? loss : gap;
}

bool QuorvanControllerImplementation::FailsByGap(StatusInfo& status) const {
    bool const fails = Gap().StatusCode != 0 && networkManager.Policy().Enforces(Rule::WholeStartUp);
    if (fails) {
        status = NamingRule(Gap(), Rule::WholeStartUp);
    }
    return fails;
}

/// Nothing if the state can't be read; a value of -1 counts as that too.
std::optional<int> QuorvanControllerImplementation::ReadRS22State(StatusInfo& status) {
    int state = -1;
    // Compared signed: an unknown generation counts as an older one.
    if (networkManager.controllerVersion < ControllerVersion::VersionYA) {
        state = GetRS22StateFromFile();
    } else {
        status = Status->ReadSystemParam(SystemParameterType::RS, Rs022Number, state);
        if (status.StatusCode != 0) {
            NoteGap(status);
            return std::nullopt;
        }
    }
    return state == -1 ? std::nullopt : std::optional(state);
}

/// The order is required: the motion manager talks to the controller as it is made.
void QuorvanControllerImplementation::CreateInterfaces(int rs22State, int numberOfToolFiles) {
    Variables = new VariablesImplementation(&networkManager, rs22State, numberOfToolFiles);
    Faults = new FaultImplementation(&networkManager);
    Job = new JobImplementation(&networkManager);
    ControlGroup = new ControlGroupImplementation(&networkManager, numberOfToolFiles);
    IO = new IOImplementation(&networkManager);
    ControlCommands = new ControlCommandsImplementation(&networkManager);
    QuorvanController::MotionManager = MotionManagerPtr(&networkManager);
    QuorvanController::Kinematics = KinematicsPtr(&networkManager);
}

/// Where a gap fails the connection, a file that lost a block is read again from its start: a read is safe to repeat.
StatusInfo QuorvanControllerImplementation::ReadFile(std::string const& name, std::string& text) {
    LinkStatistics& statistics = networkManager.Statistics();
    for (int repeat = 0;; ++repeat) {
        std::uint64_t const before = statistics.Snapshot().blocksReceived;
        StatusInfo status = Files->SaveFromControllerToString(name, text);
        bool const hasBegun = statistics.Snapshot().blocksReceived > before;
        bool const mayRepeat = networkManager.Policy().Enforces(Rule::WholeStartUp) && repeat < mostRepeats;
        if (!mayRepeat || !hasBegun || !IsLost(status)) {
            return status;
        }
        networkManager.ForgetLossOfStartUp();
        statistics.Add(LinkCounter::StartUpRetries);
    }
}

int QuorvanControllerImplementation::GetRS22StateFromFile() {
    std::string text;
    StatusInfo const status = ReadFile("RS.PRM", text);
    if (status.StatusCode != 0) {
        NoteGap(status);
        return -1;
    }
    return Rs022FromFile(text).value_or(-1);
}

int QuorvanControllerImplementation::GetNumberOfToolFiles() {
    std::string text;
    StatusInfo const status = ReadFile("TOOL.CND", text);
    if (status.StatusCode != 0 && !IsAbsence(status)) {
        NoteGap(status);
    }
    std::vector<std::string> items;
    HelperFunction::SplitStringOnCLRF(items, text, false);
    return static_cast<int>(std::ranges::count(items, "//TOOL"));
}

bool QuorvanControllerImplementation::GetAttachedControlGroups() {
    std::string text;
    if (Files == nullptr) {
        return false;
    }
    StatusInfo status = ReadFile("SYSTEM.SYS", text);
    if (status.StatusCode != 0) {
        NoteGap(status);
        return false;
    }
    SystemFileParser parser(text);
    std::vector<ControlGroupId> groups;
    if (!parser.GetAllControlGroupsFromSection("SERVO POWER", groups)) {
        NoteGap(StatusInformation(ErrorStatusCodes::ControllerObjectCreationFailed));
        return false;
    }
    for (ControlGroupId const group : groups) {
        AttachGroup(group, status);
    }
    std::vector<std::string> robotNameLines;
    parser.GetSection("ROBOT NAME", robotNameLines);
    SetBases(robotNameLines, status);
    return true;
}

void QuorvanControllerImplementation::SetBases(std::vector<std::string> const& robotNameLines, StatusInfo& status) {
    for (std::size_t i = 0; i < networkManager.GetNumberOfRobotsAttached() && i < robotNameLines.size(); ++i) {
        if (SystemFileParser::NamesBase(robotNameLines[i])) {
            AttachGroup(AttachedControlGroup("B" + std::to_string(i + 1)).Id, status);
        }
    }
}

void QuorvanControllerImplementation::AttachGroup(ControlGroupId group, StatusInfo& status) {
    if (networkManager.Policy().Enforces(Rule::WholeStartUp) && Gap().StatusCode != 0) {
        return; // the connection fails, and each further silence would only take its time
    }
    int const numberOfAxes = GetNumberOfAxesInGroup(group, status);
    networkManager.AddToControlGroupsAttached({group, static_cast<std::uint32_t>(numberOfAxes)});
}

int QuorvanControllerImplementation::GetNumberOfAxesInGroup(ControlGroupId group, StatusInfo& status) {
    std::array<char, 8> axisNames{};
    status = ControlGroup->ReadAxisConfiguration(group, axisNames);
    if (status.StatusCode != 0) {
        return -1;
    }
    return static_cast<int>(std::ranges::count_if(axisNames, [](char name) { return name != '\0'; }));
}

ConnectionStatistics QuorvanController::GetConnectionStatistics() const {
    auto const* const connection = dynamic_cast<QuorvanControllerImplementation const*>(this);
    return connection != nullptr ? connection->Engine().Statistics().Snapshot() : ConnectionStatistics{};
}

} // namespace harvlink
