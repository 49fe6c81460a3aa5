#include "simulator/faults/FaultPlan.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <optional>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "simulator/base/Text.h"

namespace harvlink::simulator {

namespace {

/// In the order of Fault.
constexpr std::array<FaultName, FaultKinds> Faults{{
    {"drop", "the answer is lost"},
    {"delay", "the answer comes delay-ms later"},
    {"duplicate", "the answer comes twice"},
    {"reorder", "the answer comes after the next one"},
    {"truncate", "the end of the answer is missing"},
    {"extend", "up to 64 random bytes follow the answer"},
    {"flip-bits", "up to 8 bits of the answer are wrong"},
    {"wrong-id", "the answer has another id than the request"},
    {"stale-id", "the answer has the id of the request before"},
    {"other-port", "the answer comes from the other port"},
    {"other-source", "the answer comes from a third port"},
    {"misnumber", "the block of a file has a wrong number"},
    {"silence", "no request is answered for silence-ms"},
    {"refuse", "refuse-count requests are refused with refuse-code"},
    {"buffer-full", "targets are refused for buffer-full-ms"},
    {"restart", "servo power is lost, open transfers are forgotten"},
}};

struct Setting {
    FaultName name;
    double lowest = 0;
    double highest = 0;
    void (*assign)(FaultPlan&, double) = nullptr;
};

constexpr double LongestMilliseconds = 3'600'000;

Clock::Duration Milliseconds(double value) {
    return std::chrono::duration_cast<Clock::Duration>(std::chrono::duration<double, std::milli>(value));
}

constexpr std::array<Setting, 6> Settings{{
    {{"seed", "the same seed gives the same faults [1]"},
     0,
     9e15,
     [](FaultPlan& plan, double value) { plan.seed = static_cast<std::uint64_t>(value); }},
    {{"delay-ms", "length of a delay in milliseconds [20]"},
     0,
     LongestMilliseconds,
     [](FaultPlan& plan, double value) { plan.delay = Milliseconds(value); }},
    {{"silence-ms", "length of a silence in milliseconds [500]"},
     0,
     LongestMilliseconds,
     [](FaultPlan& plan, double value) { plan.silence = Milliseconds(value); }},
    {{"buffer-full-ms", "length of a full buffer in milliseconds [50]"},
     0,
     LongestMilliseconds,
     [](FaultPlan& plan, double value) { plan.bufferFull = Milliseconds(value); }},
    {{"refuse-code", "the code of a refusal [8288]"},
     1,
     65535,
     [](FaultPlan& plan, double value) { plan.refuseCode = static_cast<Refusal>(std::lround(value)); }},
    {{"refuse-count", "how many requests are refused in a row [1]"},
     1,
     1e9,
     [](FaultPlan& plan, double value) { plan.refuseCount = static_cast<std::uint32_t>(value); }},
}};

constexpr std::string_view FilePortPrefix = "file-";

/// A number as written. With "%" the value is a hundredth of it.
struct Amount {
    double number = 0;
    bool isPercent = false;
};

std::optional<Amount> ParseAmount(std::string_view text) {
    std::string const digits(text);
    char* end = nullptr;
    double const number = std::strtod(digits.c_str(), &end);
    auto const rest = TrimBlanks(end);
    if (end == digits.c_str() || (!rest.empty() && rest != "%")) {
        return std::nullopt;
    }
    return Amount{number, !rest.empty()};
}

std::string SetRate(double& rate, std::string_view name, Amount amount) {
    double const whole = amount.isPercent ? 100.0 : 1.0;
    if (!(amount.number >= 0 && amount.number <= whole)) {
        return amount.isPercent ? fmt::format("{} must be from 0 to 100 %, not {} %", name, amount.number)
                                : fmt::format("{} must be from 0 to 1, which is 100 %, not {}", name, amount.number);
    }
    rate = amount.number / whole;
    return {};
}

std::string Apply(FaultPlan& plan, Setting const& setting, Amount amount) {
    auto const& name = setting.name.name;
    if (amount.isPercent) {
        return fmt::format("{} is a number, not a share in %", name);
    }
    if (!(amount.number >= setting.lowest && amount.number <= setting.highest)) {
        return fmt::format("{} must be from {} to {}, not {}", name, setting.lowest, setting.highest, amount.number);
    }
    setting.assign(plan, amount.number);
    return {};
}

std::string UnknownName(std::string_view name) {
    std::vector<std::string_view> names;
    std::ranges::transform(Faults, std::back_inserter(names), &FaultName::name);
    std::ranges::transform(Settings, std::back_inserter(names), [](Setting const& each) { return each.name.name; });
    return fmt::format("there is no fault or setting '{}'; there are: {}", name, fmt::join(names, ", "));
}

std::string SetAmount(FaultPlan& plan, std::string_view name, Amount amount) {
    bool const isOfFilePort = name.starts_with(FilePortPrefix);
    auto const bare = name.substr(isOfFilePort ? FilePortPrefix.size() : 0);
    auto const* const fault = std::ranges::find(Faults, bare, &FaultName::name);
    if (fault != Faults.end()) {
        auto const index = static_cast<std::size_t>(fault - Faults.begin());
        double rate = 0;
        auto problem = SetRate(rate, name, amount);
        if (problem.empty()) {
            isOfFilePort ? plan.fileRates.at(index).emplace(rate) : plan.rates.at(index) = rate;
        }
        return problem;
    }
    auto const* const setting = std::ranges::find(Settings, name, [](Setting const& each) { return each.name.name; });
    return setting == Settings.end() ? UnknownName(name) : Apply(plan, *setting, amount);
}

} // namespace

std::string_view NameOf(Fault fault) {
    return Faults.at(static_cast<std::size_t>(fault)).name;
}

std::vector<FaultName> FaultNames() {
    return {Faults.begin(), Faults.end()};
}

std::vector<FaultName> FaultSettingNames() {
    std::vector<FaultName> names;
    std::ranges::transform(Settings, std::back_inserter(names), &Setting::name);
    return names;
}

std::string FaultPlan::Set(std::string_view name, double value) {
    return SetAmount(*this, name, {.number = value});
}

std::string FaultPlan::Parse(std::string_view text) {
    while (!text.empty()) {
        auto const item = text.substr(0, text.find(','));
        text.remove_prefix(std::min(item.size() + 1, text.size()));
        auto const equals = item.find('=');
        auto const amount = equals == std::string_view::npos ? std::nullopt : ParseAmount(item.substr(equals + 1));
        if (!amount) {
            return fmt::format("'{}' is not of the form name=number, such as drop=2%", TrimBlanks(item));
        }
        if (auto problem = SetAmount(*this, TrimBlanks(item.substr(0, equals)), *amount); !problem.empty()) {
            return problem;
        }
    }
    return {};
}

} // namespace harvlink::simulator
