#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "controller/JobMessages.h"
#include "harvlink/JobInterface.h"
#include "wire/Request.h"

namespace harvlink {

/// Gives a refusal the job table's text and offset.
void ApplyJobTable(StatusInfo& status);

struct ExecutingJobRequest {
    using Reply = JobMsg;
    static constexpr CommandNumber command = CommandNumber::ExecutingJobRead;
    static constexpr Service service = Service::ReadAll;
    std::uint16_t instance;

    explicit ExecutingJobRequest(TesselTaskNumber task)
        : instance(static_cast<std::uint16_t>(static_cast<unsigned>(task) + 1)) {}

    static StatusInfo Decode(StatusInfo status, ReplyTo<ExecutingJobRequest> const& reply, JobData& data);
};

/// Asks for the task itself, where ExecutingJobRequest asks for task + 1. From `VersionYA` up.
struct JobStackRequest {
    using Reply = JobStructs::JobStackReturnData;
    static constexpr CommandNumber command = CommandNumber::JobStackRead;
    static constexpr Service service = Service::ReadAll;
    static constexpr std::uint16_t instance = 0;
    TaskDataMsg payload;

    explicit JobStackRequest(TesselTaskNumber task) : payload{static_cast<std::uint16_t>(task)} {}

    static StatusInfo Decode(StatusInfo status, ReplyTo<JobStackRequest> const& reply, std::vector<std::string>& jobs);
};

/// Selects a job and a line of it.
struct JobSelectRequest {
    using Reply = std::uint8_t;
    static constexpr CommandNumber command = CommandNumber::JobSelect;
    static constexpr Service service = Service::WriteAll;
    static constexpr std::uint16_t instance = 1;
    static constexpr std::uint16_t payloadSize = JobSelectPayloadSize;
    JobMsg payload;

    /// The name goes out in upper case and without ".JBI"; at most 32 characters of it are looked at.
    JobSelectRequest(std::string_view name, std::uint32_t line);
};

} // namespace harvlink
