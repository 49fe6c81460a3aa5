#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace harvlink {

/// Both directions: the whole record answers ExecutingJobRead, its first 36 bytes are what JobSelect sends.
struct JobMsg {
    std::array<char, 32> jobName{}; ///< upper case; a name of 32 characters has no terminator
    std::uint32_t line = 0;
    std::uint32_t stepNumber = 0;
    std::uint32_t speedOverride = 0; ///< hundredths of a per cent
};
static_assert(sizeof(JobMsg) == 44);
static_assert(offsetof(JobMsg, line) == 32);
static_assert(offsetof(JobMsg, stepNumber) == 36);
static_assert(offsetof(JobMsg, speedOverride) == 40);

/// What JobSelect sends of a JobMsg: the name and the line.
inline constexpr std::uint16_t JobSelectPayloadSize = offsetof(JobMsg, stepNumber);

/// Request of JobStackRead.
struct TaskDataMsg {
    std::uint32_t task = 0;
};
static_assert(sizeof(TaskDataMsg) == 4);

namespace JobStructs {

/// Reply to JobStackRead.
struct JobStackReturnData {
    std::int8_t jobCount = 0;
    std::array<char, 3> padding{};
    std::array<std::array<char, 33>, 12> jobNames{};
};
static_assert(sizeof(JobStackReturnData) == 400);
static_assert(offsetof(JobStackReturnData, padding) == 1);
static_assert(offsetof(JobStackReturnData, jobNames) == 4);

} // namespace JobStructs
} // namespace harvlink
