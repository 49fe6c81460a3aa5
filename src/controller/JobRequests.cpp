#include "controller/JobRequests.h"

#include <algorithm>
#include <cctype>

#include "status/ErrorTables.h"
#include "status/GetStatusInfo.h"

namespace harvlink {

void ApplyJobTable(StatusInfo& status) {
    HelperFunction::GetStatusInfo(status, JobErrorTable, JobErrorOffset);
}

StatusInfo ExecutingJobRequest::Decode(StatusInfo status, ReplyTo<ExecutingJobRequest> const& reply, JobData& data) {
    constexpr int invalidTask = 40961;
    data = {};
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

StatusInfo JobStackRequest::Decode(StatusInfo status, ReplyTo<JobStackRequest> const& reply,
                                   std::vector<std::string>& jobs) {
    jobs.clear();
    if (status.StatusCode != 0) {
        ApplyJobTable(status);
        return status;
    }
    auto const& names = reply.payload.jobNames;
    int const count = std::clamp<int>(reply.payload.jobCount, 0, static_cast<int>(names.size()));
    std::for_each_n(names.begin(), count, [&](auto const& name) { jobs.emplace_back(name.begin(), name.end()); });
    return status;
}

JobSelectRequest::JobSelectRequest(std::string_view name, std::uint32_t line) {
    constexpr std::string_view jobExtension = ".JBI";
    name = name.substr(0, payload.jobName.size());
    std::ranges::transform(name, payload.jobName.begin(),
                           [](unsigned char character) { return static_cast<char>(std::toupper(character)); });
    if (std::string_view(payload.jobName.data(), name.size()).ends_with(jobExtension)) {
        std::fill_n(payload.jobName.begin() + static_cast<std::ptrdiff_t>(name.size() - jobExtension.size()),
                    jobExtension.size(), '\0');
    }
    payload.line = line;
}

} // namespace harvlink
