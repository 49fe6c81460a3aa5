#include "fleet/StartUp.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "controller/ControlGroupRequests.h"
#include "controller/SystemRequests.h"
#include "variables/Rs022.h"

namespace harvlink::fleet {
namespace {

constexpr std::uint64_t largestParameterFile = 1U << 20U;

bool CountsVariables(Item const& item) {
    return item.Kind() >= FleetItemKind::ByteVariable && item.Kind() <= FleetItemKind::StationPositionVariable;
}

} // namespace

StartUp::StartUp(std::span<Item const> items) : needsVariableOrigin(std::ranges::any_of(items, CountsVariables)) {
    for (Item const& item : items) {
        if (item.Kind() == FleetItemKind::Position && std::ranges::find(groups, item.ControlGroup()) == groups.end()) {
            groups.push_back(item.ControlGroup());
        }
    }
}

Query StartUp::Next() const {
    switch (subject) {
    case Subject::Software:
        return QueryOf(SystemInformationRequest(SystemInfoId::Robot1));
    case Subject::VariableOrigin:
        return QueryOf(ParameterRequest(SystemParameterType::RS, Rs022Number, 0));
    default:
        return QueryOf(AxisConfigurationRequest(groups.back()));
    }
}

std::optional<FileStep> StartUp::NextOfFile() {
    return download ? download->Next() : std::nullopt;
}

void StartUp::Take(std::int32_t code, std::span<std::byte const> payload) {
    // Which axes a group has that is not there does not matter: the controller refuses its position too.
    bool const isLost = code >= static_cast<std::int32_t>(ErrorStatusCodes::UndefinedException);
    if (code != 0 && (subject != Subject::Axes || isLost)) {
        Fail(code);
        return;
    }
    switch (subject) {
    case Subject::Software:
        TakeSoftware(payload);
        break;
    case Subject::VariableOrigin: {
        std::int32_t value = 0;
        std::memcpy(&value, payload.data(), sizeof(value));
        facts.rs22 = value;
        needsVariableOrigin = false;
        break;
    }
    default:
        if (code == 0) {
            TakeAxes(payload);
        }
        groups.pop_back();
    }
    GoOn();
}

void StartUp::TakeSoftware(std::span<std::byte const> payload) {
    SystemInfoReturnMsg message;
    std::memcpy(&message, payload.data(), sizeof(message));
    facts.generation = GenerationOf(message);
    facts.software = message.softwareVersion;
    facts.model = message.modelName;
}

void StartUp::TakeAxes(std::span<std::byte const> payload) {
    AxisConfigurationDataMsg message;
    std::memcpy(&message, payload.data(), sizeof(message));
    facts.axes.at(static_cast<std::size_t>(groups.back())) = static_cast<std::uint8_t>(
        std::ranges::count_if(message.axisNames, [](std::uint32_t name) { return (name & 0xffU) != 0; }));
}

/// Compared signed: an unknown generation counts as an older one, which keeps the parameter in a file.
void StartUp::GoOn() {
    if (needsVariableOrigin && facts.generation < ControllerVersion::VersionYA) {
        download.emplace(FileServices::SaveFile, "RS.PRM");
        state = State::AskFilePort;
    } else if (needsVariableOrigin) {
        subject = Subject::VariableOrigin;
        state = State::AskRobotPort;
    } else if (!groups.empty()) {
        subject = Subject::Axes;
        state = State::AskRobotPort;
    } else {
        state = State::Done;
    }
}

void StartUp::TakeOfFile(std::int32_t code, FileReply const& reply) {
    StatusInfo status = StatusInformation(code);
    auto const breach = download->FindBreach(status, reply, largestParameterFile);
    if (breach != ErrorStatusCodes::Ok) {
        Fail(static_cast<std::int32_t>(breach));
        return;
    }
    download->Take(std::move(status), reply);
    if (download->Result().StatusCode != 0) {
        Fail(download->Result().StatusCode);
    }
}

void StartUp::EndOfFile() {
    std::string text;
    download->MoveTextTo(text);
    download.reset();
    auto const origin = Rs022FromFile(text);
    if (!origin) {
        Fail(static_cast<std::int32_t>(ErrorStatusCodes::ControllerObjectCreationFailed));
        return;
    }
    facts.rs22 = *origin;
    needsVariableOrigin = false;
    GoOn();
}

void StartUp::Fail(std::int32_t code) {
    failure = code;
    state = State::Failed;
}

} // namespace harvlink::fleet
