#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace harvlink::soak {

/// Sets some variables, one of them in a job that it calls.
inline constexpr std::string_view RunJobName = "SOAKRUN";
inline constexpr std::string_view RunJob = "/JOB\r\n"
                                           "//NAME SOAKRUN\r\n"
                                           "//INST\r\n"
                                           "NOP\r\n"
                                           "SET I090 -1234\r\n"
                                           "SET D090 56789012\r\n"
                                           "CALL JOB:SOAKSUB\r\n"
                                           "SET B090 77\r\n"
                                           "END\r\n";
inline constexpr std::string_view SubJobName = "SOAKSUB";
inline constexpr std::string_view SubJob = "/JOB\r\n"
                                           "//NAME SOAKSUB\r\n"
                                           "//INST\r\n"
                                           "NOP\r\n"
                                           "TIMER T=0.20\r\n"
                                           "SET R090 2.5\r\n"
                                           "END\r\n";
/// Raises an alarm in its first line.
inline constexpr std::string_view BadJobName = "SOAKBAD";
inline constexpr std::string_view BadJob = "/JOB\r\n"
                                           "//NAME SOAKBAD\r\n"
                                           "//INST\r\n"
                                           "NOP\r\n"
                                           "CALL JOB:NOWHERE\r\n"
                                           "END\r\n";

inline constexpr std::uint16_t JobVariable = 90; ///< index of the variables that RunJob sets, one of each kind
inline constexpr std::uint8_t JobDone = 77;
inline constexpr std::int16_t JobInteger = -1234;
inline constexpr std::int32_t JobDouble = 56789012;
inline constexpr float JobReal = 2.5F;

inline constexpr std::uint32_t BadJobAlarm = 4450;
inline constexpr std::uint32_t BadJobLine = 1;
inline constexpr std::string_view BadJobText = "NO JOB NOWHERE";

} // namespace harvlink::soak
