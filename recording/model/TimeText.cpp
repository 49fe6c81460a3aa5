#include "recording/model/TimeText.h"

#include <array>
#include <cmath>
#include <ctime>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "words/text/InputError.h"
#include "words/text/Text.h"

namespace harvlink::recording {

namespace {

using words::InputError;

constexpr Microseconds Second = 1'000'000;
constexpr Microseconds LatestSecond = 253'402'300'799; ///< the end of the year 9999

std::tm CalendarOf(Microseconds time) {
    Microseconds const floor = time / Second - (time % Second < 0 ? 1 : 0);
    auto const seconds = static_cast<std::time_t>(std::clamp(floor, -LatestSecond / 5, LatestSecond));
    std::tm calendar{};
    gmtime_r(&seconds, &calendar);
    return calendar;
}

struct Unit {
    std::string_view name;
    double factor;
};

/// A number of at least 0 and one of the units.
template <std::size_t Count>
double ParseWithUnit(std::string_view text, std::array<Unit, Count> const& units, std::string_view what) {
    for (Unit const& unit : units) {
        if (text.size() > unit.name.size() && text.ends_with(unit.name)) {
            auto const digits = text.substr(0, text.size() - unit.name.size());
            bool const isNumber = digits.find_first_not_of("0123456789.") == std::string_view::npos;
            double const value = isNumber ? words::ParseNumber<double>(digits, what) * unit.factor : -1;
            constexpr double Most = 9e18;
            if (value >= 0 && value < Most) {
                return value;
            }
        }
    }
    throw InputError(fmt::format("'{}' is not a {}", text, what));
}

} // namespace

std::string FormatTime(Microseconds time) {
    Microseconds const fraction = (time % Second + Second) % Second;
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:06}Z", CalendarOf(time), fraction);
}

std::string FormatTimeForName(Microseconds time) {
    return fmt::format("{:%Y%m%dT%H%M%SZ}", CalendarOf(time));
}

Microseconds ParseTime(std::string_view text, Microseconds begin, Microseconds end) {
    if (text.starts_with('+')) {
        return begin + ParseDuration(text.substr(1)).count();
    }
    if (text.starts_with('-')) {
        return end - ParseDuration(text.substr(1)).count();
    }
    std::string copy(text);
    for (char const* const format :
         {"%Y-%m-%dT%H:%M:%S", "%Y-%m-%d %H:%M:%S", "%Y-%m-%dT%H:%M", "%Y-%m-%d %H:%M", "%Y-%m-%d"}) {
        std::tm calendar{};
        char const* const rest = strptime(copy.c_str(), format, &calendar);
        if (rest == nullptr) {
            continue;
        }
        std::string_view fraction(rest);
        if (fraction.ends_with('Z')) {
            fraction.remove_suffix(1);
        }
        bool const isFraction = fraction.size() > 1 && fraction.front() == '.' && fraction.size() <= 10 &&
                                fraction.find_first_not_of("0123456789", 1) == std::string_view::npos;
        if (fraction.empty() || isFraction) {
            double const part = isFraction ? words::ParseNumber<double>("0" + std::string(fraction), "time") : 0.0;
            return timegm(&calendar) * Second + std::llround(part * 1e6);
        }
    }
    throw InputError(fmt::format(
        "'{}' is not a time such as 2026-11-22T03:15:00Z, +90s after the start or -1m before the end", text));
}

std::chrono::microseconds ParseDuration(std::string_view text) {
    constexpr std::array<Unit, 6> Units{
        {{"us", 1}, {"ms", 1e3}, {"s", 1e6}, {"m", 60e6}, {"h", 3600e6}, {"d", 86400e6}}};
    return std::chrono::microseconds(
        std::llround(ParseWithUnit(text, Units, "duration such as 100ms, 60s, 5m, 12h or 7d")));
}

std::uint64_t ParseSize(std::string_view text) {
    constexpr std::array<Unit, 5> Units{
        {{"K", 1024.0}, {"M", 1048576.0}, {"G", 1073741824.0}, {"T", 1099511627776.0}, {"", 1}}};
    return static_cast<std::uint64_t>(std::llround(ParseWithUnit(text, Units, "size such as 500M or 2G")));
}

std::string FormatSize(std::uint64_t bytes) {
    constexpr std::array Names{"B", "kB", "MB", "GB", "TB"};
    auto size = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (; size >= 1024 && unit + 1 < Names.size(); ++unit) {
        size /= 1024;
    }
    return unit == 0 ? fmt::format("{} B", bytes) : fmt::format("{:.1f} {}", size, Names.at(unit));
}

} // namespace harvlink::recording
