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
#include "io/IOImplementation.h"
#include "kinematics/Kinematics.h"
#include "motion/MotionManager.h"
#include "variables/Rs022.h"
#include "variables/VariablesImplementation.h"
#include "wire/HelperFunction.h"

namespace harvlink {
namespace {

template <typename Interface>
void Delete(Interface*& interface) {
    delete interface;
    interface = nullptr;
}

} // namespace

QuorvanControllerImplementation::QuorvanControllerImplementation(std::string const& ipAddress,
                                                                 unsigned timeoutMilliseconds, unsigned retries,
                                                                 bool logging, StatusInfo& status)
    : QuorvanControllerImplementation(ipAddress, timeoutMilliseconds, retries, status) {
    if (status.StatusCode == 0) {
        StartUp(logging, status);
    }
}

QuorvanControllerImplementation::QuorvanControllerImplementation(std::unique_ptr<DatagramTransport> transport,
                                                                 unsigned timeoutMilliseconds, unsigned retries,
                                                                 bool logging, StatusInfo& status)
    : QuorvanControllerImplementation(std::move(transport), timeoutMilliseconds, retries, status) {
    if (status.StatusCode == 0) {
        StartUp(logging, status);
    }
}

template <typename Peer>
QuorvanControllerImplementation::QuorvanControllerImplementation(Peer&& peer, unsigned timeoutMilliseconds,
                                                                 unsigned retries, StatusInfo& status)
    : networkManager(std::forward<Peer>(peer), timeoutMilliseconds, retries, status) {}

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
    if (!rs22State) {
        status = StatusInformation(ErrorStatusCodes::ControllerObjectCreationFailed);
        return;
    }
    CreateInterfaces(*rs22State, GetNumberOfToolFiles());
    networkManager.SetLogging(logging);
    GetAttachedControlGroups();
    status = StatusInformation(ErrorStatusCodes::Ok);
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

int QuorvanControllerImplementation::GetRS22StateFromFile() {
    std::string text;
    if (Files->SaveFromControllerToString("RS.PRM", text).StatusCode != 0) {
        return -1;
    }
    return Rs022FromFile(text).value_or(-1);
}

int QuorvanControllerImplementation::GetNumberOfToolFiles() {
    std::string text;
    Files->SaveFromControllerToString("TOOL.CND", text);
    std::vector<std::string> items;
    HelperFunction::SplitStringOnCLRF(items, text, false);
    return static_cast<int>(std::ranges::count(items, "//TOOL"));
}

bool QuorvanControllerImplementation::GetAttachedControlGroups() {
    std::string text;
    if (Files == nullptr || Files->SaveFromControllerToString("SYSTEM.SYS", text).StatusCode != 0) {
        return false;
    }
    SystemFileParser parser(text);
    std::vector<ControlGroupId> groups;
    if (!parser.GetAllControlGroupsFromSection("SERVO POWER", groups)) {
        return false;
    }
    StatusInfo status;
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

} // namespace harvlink
