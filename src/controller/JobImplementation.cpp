#include "controller/JobImplementation.h"

#include <algorithm>
#include <ostream>
#include <string_view>

#include "controller/JobMessages.h"
#include "status/ErrorTables.h"
#include "status/GetStatusInfo.h"
#include "wire/HelperFunction.h"

namespace harvlink {
namespace {

constexpr std::size_t maxNameLength = 32;
constexpr int invalidTask = 40961;
constexpr int invalidLine = 20992;
constexpr std::string_view jobExtension = ".JBI";

void ApplyJobTable(StatusInfo& status) {
    HelperFunction::GetStatusInfo(status, JobErrorTable, JobErrorOffset);
}

} // namespace

StatusInfo JobImplementation::SetActiveJob(std::string const& name, unsigned line) {
    // The extension counts: the length is that of the argument, before the extension is cut.
    if (name.size() > maxNameLength) {
        return StatusInformation(ErrorStatusCodes::InvalidJobNameLength);
    }
    StatusInfo status =
        line > maxLineNumber ? StatusInformation(invalidLine, "Invalid line number.") : SelectJob(name, line);
    ApplyJobTable(status);
    return status;
}

StatusInfo JobImplementation::SelectJob(std::string const& name, unsigned line) {
    std::string jobName = HelperFunction::ToUpper(name);
    if (jobName.ends_with(jobExtension)) {
        jobName.resize(jobName.size() - jobExtension.size());
    }
    OutgoingPacket<JobMsg> outgoing;
    outgoing.header.payloadSize = JobSelectPayloadSize;
    outgoing.subHeader = {CommandNumber::JobSelect, 1, FixedField::WholeRecord, ServiceWriteAll};
    std::ranges::copy(jobName, outgoing.payload.jobName.begin());
    outgoing.payload.line = line;
    IncomingPacket<std::uint8_t> incoming;
    return networkManager->SendAndReceive(outgoing, incoming, std::nullopt, true);
}

StatusInfo JobImplementation::GetExecutingJobInformation(TesselTaskNumber task, JobData& data) {
    data = {};
    StatusInfo status;
    auto const instance = static_cast<std::uint16_t>(static_cast<unsigned>(task) + 1);
    auto const reply = networkManager->SimpleRequest<JobMsg>(instance, CommandNumber::ExecutingJobRead, status,
                                                             FixedField::WholeRecord, ServiceReadAll);
    if (status.StatusCode == invalidTask) {
        return StatusInformation(invalidTask, "The tessel task number selection is invalid.");
    }
    if (status.StatusCode != 0) {
        ApplyJobTable(status);
        return status;
    }
    JobMsg const& job = reply.payload;
    data = {{job.jobName.begin(), job.jobName.end()}, job.line, job.stepNumber, job.speedOverride * 0.01};
    return status;
}

StatusInfo JobImplementation::GetJobStack(TesselTaskNumber task, std::vector<std::string>& jobs) {
    if (!HelperFunction::CheckUAPICompatible(networkManager->controllerVersion)) {
        return StatusInformation(ErrorStatusCodes::UnsupportedOnThisController);
    }
    jobs.clear();
    StatusInfo status;
    // The task itself, where the executing job is asked for by task + 1.
    auto const reply = networkManager->RecordRequest<JobStructs::JobStackReturnData>(
        TaskDataMsg{static_cast<std::uint16_t>(task)}, 0, CommandNumber::JobStackRead, status, FixedField::WholeRecord,
        ServiceReadAll);
    if (status.StatusCode != 0) {
        ApplyJobTable(status);
        return status;
    }
    auto const& names = reply.payload.jobNames;
    int const count = std::clamp<int>(reply.payload.jobCount, 0, static_cast<int>(names.size()));
    std::for_each_n(names.begin(), count, [&](auto const& name) { jobs.emplace_back(name.begin(), name.end()); });
    return status;
}

std::ostream& operator<<(std::ostream& stream, JobData const& data) {
    return stream << "Name: " << data.name << "\nLine: " << data.line << "\nStep Number: " << data.stepNumber
                  << "\nSpeed Override: " << data.speedOverride << '%';
}

} // namespace harvlink
