#include "simulator/faults/FaultPlan.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

#include <fmt/format.h>

namespace harvlink::simulator {

namespace {

/// In the order of Fault.
constexpr std::array<std::string_view, FaultKinds> Names{
    "drop",     "delay",      "duplicate",    "reorder", "truncate", "extend",      "flip-bits", "wrong-id",
    "stale-id", "other-port", "other-source", "silence", "refuse",   "buffer-full", "restart",
};

constexpr std::string_view FilePortPrefix = "file-";
constexpr double LongestMilliseconds = 3'600'000;

std::string CheckRange(std::string_view name, double value, double lowest, double highest) {
    if (value >= lowest && value <= highest) {
        return {};
    }
    return fmt::format("{} must be from {} to {}", name, lowest, highest);
}

Clock::Duration Milliseconds(double value) {
    return std::chrono::duration_cast<Clock::Duration>(std::chrono::duration<double, std::milli>(value));
}

/// A number, with "%" behind it a hundredth of it.
std::optional<double> ParseNumber(std::string const& text) {
    char* end = nullptr;
    double const value = std::strtod(text.c_str(), &end);
    std::string_view const rest(end);
    if (end == text.c_str() || (!rest.empty() && rest != "%")) {
        return std::nullopt;
    }
    return rest.empty() ? value : value / 100.0;
}

} // namespace

std::string_view NameOf(Fault fault) {
    return Names.at(static_cast<std::size_t>(fault));
}

std::string FaultPlan::Set(std::string_view name, double value) {
    auto const set = [&](double lowest, double highest, auto&& assign) {
        auto problem = CheckRange(name, value, lowest, highest);
        if (problem.empty()) {
            assign();
        }
        return problem;
    };
    bool const isOfFilePort = name.starts_with(FilePortPrefix);
    auto const* const fault = std::ranges::find(Names, name.substr(isOfFilePort ? FilePortPrefix.size() : 0));
    if (fault != Names.end()) {
        auto const index = static_cast<std::size_t>(fault - Names.begin());
        return set(0, 1, [&] { isOfFilePort ? fileRates.at(index).emplace(value) : rates.at(index) = value; });
    }
    if (name == "seed") {
        return set(0, 9e15, [&] { seed = static_cast<std::uint64_t>(value); });
    }
    if (name == "delay-ms") {
        return set(0, LongestMilliseconds, [&] { delay = Milliseconds(value); });
    }
    if (name == "silence-ms") {
        return set(0, LongestMilliseconds, [&] { silence = Milliseconds(value); });
    }
    if (name == "buffer-full-ms") {
        return set(0, LongestMilliseconds, [&] { bufferFull = Milliseconds(value); });
    }
    if (name == "refuse-code") {
        return set(1, 65535, [&] { refuseCode = static_cast<Refusal>(std::lround(value)); });
    }
    if (name == "refuse-count") {
        return set(1, 1e9, [&] { refuseCount = static_cast<std::uint32_t>(value); });
    }
    return fmt::format("there is no fault or setting '{}'", name);
}

std::string FaultPlan::Parse(std::string_view text) {
    while (!text.empty()) {
        auto const item = text.substr(0, text.find(','));
        text.remove_prefix(std::min(item.size() + 1, text.size()));
        auto const equals = item.find('=');
        auto const value =
            equals == std::string_view::npos ? std::nullopt : ParseNumber(std::string(item.substr(equals + 1)));
        if (!value) {
            return fmt::format("'{}' is not of the form name=number", item);
        }
        if (auto problem = Set(item.substr(0, equals), *value); !problem.empty()) {
            return problem;
        }
    }
    return {};
}

} // namespace harvlink::simulator
