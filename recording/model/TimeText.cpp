#include "recording/model/TimeText.h"

#include <array>
#include <chrono>
#include <cmath>
#include <ctime>
#include <iomanip>
#include <locale>
#include <optional>
#include <sstream>

#include <fmt/format.h>

#include "words/text/InputError.h"
#include "words/text/Text.h"

namespace harvlink::recording {

namespace {

using words::InputError;

constexpr Microseconds Second = 1'000'000;
constexpr Microseconds LatestSecond = 253'402'300'799; ///< the end of the year 9999

/// Of the calendar in UTC. What the system has for it differs, and ends at other years.
struct Calendar {
    std::chrono::year_month_day day;
    std::chrono::hh_mm_ss<std::chrono::seconds> time;
};

Calendar CalendarOf(Microseconds time) {
    Microseconds const floor = time / Second - (time % Second < 0 ? 1 : 0);
    std::chrono::sys_seconds const moment{std::chrono::seconds(std::clamp(floor, -LatestSecond / 5, LatestSecond))};
    auto const midnight = std::chrono::floor<std::chrono::days>(moment);
    return {std::chrono::year_month_day(midnight), std::chrono::hh_mm_ss(moment - midnight)};
}

/// `form` has a place for each of year, month, day, hour, minute and second.
std::string FormatCalendar(Calendar const& calendar, fmt::format_string<int, unsigned, unsigned, int, int, int> form) {
    auto const& [day, time] = calendar;
    return fmt::format(form, static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                       static_cast<unsigned>(day.day()), static_cast<int>(time.hours().count()),
                       static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
}

/// Seconds since 1970, and what `text` has behind the form; none if it has another one, or a day that the calendar has not.
std::optional<std::pair<Microseconds, std::string>> ReadCalendar(std::string const& text, char const* form) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    std::tm read{};
    read.tm_mday = 1;
    stream >> std::get_time(&read, form);
    std::chrono::year_month_day const day{std::chrono::year(read.tm_year + 1900),
                                          std::chrono::month(static_cast<unsigned>(read.tm_mon) + 1),
                                          std::chrono::day(static_cast<unsigned>(read.tm_mday))};
    if (stream.fail() || !day.ok()) {
        return std::nullopt;
    }
    auto const moment = std::chrono::sys_days(day) + std::chrono::hours(read.tm_hour) +
                        std::chrono::minutes(read.tm_min) + std::chrono::seconds(read.tm_sec);
    return std::pair(moment.time_since_epoch().count(), std::string(std::istreambuf_iterator<char>(stream), {}));
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
    return FormatCalendar(CalendarOf(time), "{:04}-{:02}-{:02}T{:02}:{:02}:{:02}") + fmt::format(".{:06}Z", fraction);
}

std::string FormatTimeForName(Microseconds time) {
    return FormatCalendar(CalendarOf(time), "{:04}{:02}{:02}T{:02}{:02}{:02}Z");
}

Microseconds ParseTime(std::string_view text, Microseconds begin, Microseconds end) {
    if (text.starts_with('+')) {
        return begin + ParseDuration(text.substr(1)).count();
    }
    if (text.starts_with('-')) {
        return end - ParseDuration(text.substr(1)).count();
    }
    std::string const copy(text);
    for (char const* const form :
         {"%Y-%m-%dT%H:%M:%S", "%Y-%m-%d %H:%M:%S", "%Y-%m-%dT%H:%M", "%Y-%m-%d %H:%M", "%Y-%m-%d"}) {
        auto const read = ReadCalendar(copy, form);
        if (!read) {
            continue;
        }
        std::string_view fraction(read->second);
        if (fraction.ends_with('Z')) {
            fraction.remove_suffix(1);
        }
        bool const isFraction = fraction.size() > 1 && fraction.front() == '.' && fraction.size() <= 10 &&
                                fraction.find_first_not_of("0123456789", 1) == std::string_view::npos;
        if (fraction.empty() || isFraction) {
            double const part = isFraction ? words::ParseNumber<double>("0" + std::string(fraction), "time") : 0.0;
            return read->first * Second + std::llround(part * 1e6);
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
