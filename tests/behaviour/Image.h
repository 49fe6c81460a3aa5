#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <bitset>
#include <cstdlib>
#include <span>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "behaviour/Failure.h"
#include "binding/Binding.h"

/// @file
/// The outputs of an operation as a text with all fields, for comparisons, and the pattern that fills them before.

namespace harvlink::test {

struct NoOutput {};

/// The fields of the records that have a field `known`.
#define FIELDS_IF(known, ...)                                                                                          \
    inline auto Fields(auto& r) requires requires {                                                                    \
        r.known;                                                                                                       \
    }                                                                                                                  \
    { return std::tie(__VA_ARGS__); }
// clang-format off
FIELDS_IF(cycleMode, r.cycleMode, r.isRunning, r.controlMode, r.isProgramPendantHold, r.isAlarming, r.isErroring,
          r.isServoOn)
FIELDS_IF(modelName, r.softwareVersion, r.modelName)
FIELDS_IF(startTimeEpoch, r.startTimeEpoch, r.elapsedTime.seconds, r.elapsedTime.minutes, r.elapsedTime.hours)
FIELDS_IF(frontOrBack, r.frontOrBack, r.upperOrLower, r.flipOrNoFlip, r.sAngle, r.lAngle, r.uAngle, r.rAngle, r.bAngle,
          r.tAngle, r.eAngle, r.wAngle)
FIELDS_IF(figure, r.coordinateType, r.figure, r.toolNumber, r.userCoordinateNumber, r.axes)
FIELDS_IF(controlGroup, r.controlGroup, r.axes)
FIELDS_IF(value, r.value, r.variableIndex)
FIELDS_IF(positionData, r.positionData, r.variableIndex)
FIELDS_IF(subcode, r.code, r.subcode, r.time, r.name)
FIELDS_IF(numberOfAlarms, r.numberOfAlarms, r.alarms)
FIELDS_IF(stepNumber, r.name, r.line, r.stepNumber, r.speedOverride)
// clang-format on
#undef FIELDS_IF
inline auto
Fields(auto& r) requires std::is_same_v<std::remove_const_t<std::remove_reference_t<decltype(r)>>, PositionErrorData> {
    return std::tie(r.axes);
}
inline auto Fields(NoOutput const&) {
    return std::tuple<>();
}

template <typename T>
inline constexpr bool isBits = false;
template <std::size_t bits>
inline constexpr bool isBits<std::bitset<bits>> = true;

/// A pattern that none of the replies in these tests contains.
template <typename Value>
void Poison(Value& value) {
    if constexpr (std::is_same_v<Value, bool>) {
        value = true;
    } else if constexpr (std::is_arithmetic_v<Value> || std::is_enum_v<Value>) {
        value = static_cast<Value>(0x5a);
    } else if constexpr (isBits<Value>) {
        value = 0x5a;
    } else if constexpr (std::is_same_v<Value, std::string>) {
        value = "poison";
    } else if constexpr (std::is_same_v<Value, std::vector<std::string>>) {
        value = {"poison"};
    } else if constexpr (requires { value.begin(); }) {
        for (auto& element : value) {
            Poison(element);
        }
    } else {
        std::apply([](auto&... fields) { (Poison(fields), ...); }, Fields(value));
    }
}

template <typename Value>
Value Poisoned() {
    Value value{};
    Poison(value);
    return value;
}

/// On request, texts end at their first zero byte, as in the plain interface.
template <typename Value>
void Write(std::ostream& image, Value const& value, bool cutsTexts) {
    if constexpr (isBits<Value>) {
        image << value.to_ulong() << ' ';
    } else if constexpr (std::is_enum_v<Value>) {
        image << static_cast<long>(value) << ' ';
    } else if constexpr (std::is_floating_point_v<Value>) {
        image << value << ' ';
    } else if constexpr (std::is_arithmetic_v<Value>) {
        image << static_cast<long long>(value) << ' ';
    } else if constexpr (std::is_same_v<Value, std::string>) {
        std::string const text = cutsTexts ? value.substr(0, value.find('\0')) : value;
        image << text.size() << '"' << text << "\" ";
    } else if constexpr (requires { value.begin(); }) {
        image << '[';
        for (auto const& element : value) {
            Write(image, element, cutsTexts);
        }
        image << ']';
    } else {
        std::apply([&](auto const&... fields) { (Write(image, fields, cutsTexts), ...); }, Fields(value));
    }
}

template <typename Value>
std::string Image(Value const& value, bool cutsTexts) {
    std::ostringstream image;
    Write(image, value, cutsTexts);
    return image.str();
}

/// Copies and frees a text of the plain interface.
inline std::string Take(char* text) {
    NotCounted const ofTest;
    std::string taken(text != nullptr ? text : "");
    std::free(text);
    return taken;
}

inline AlarmData Take(IAlarmData const& plain) {
    return {plain.code, plain.subcode, Take(plain.time), Take(plain.name)};
}
template <typename Alarms>
Alarms TakeAlarms(auto const& plain) {
    Alarms alarms{{}, plain.numberOfAlarms};
    std::ranges::transform(plain.alarms, alarms.alarms.begin(), [](IAlarmData const& alarm) { return Take(alarm); });
    return alarms;
}
inline ActiveAlarms Take(IActiveAlarms const& plain) {
    return TakeAlarms<ActiveAlarms>(plain);
}
inline AlarmHistory Take(IAlarmHistory const& plain) {
    return TakeAlarms<AlarmHistory>(plain);
}
inline SystemInfoData Take(ISystemInfoData const& plain) {
    return {Take(plain.softwareVersion), Take(plain.modelName)};
}
inline StringVariableData Take(IStringVariableData const& plain) {
    return {Take(plain.value), plain.variableIndex};
}
inline JobData Take(IJobData const& plain) {
    return {Take(plain.name), plain.line, plain.stepNumber, plain.speedOverride};
}
inline std::vector<std::string> Take(IJobStack const& plain) {
    std::vector<std::string> jobs;
    for (char* const job : std::bit_cast<std::array<char*, 12>>(plain)) {
        jobs.push_back(Take(job));
    }
    std::erase(jobs, "none");
    return jobs;
}

} // namespace harvlink::test
