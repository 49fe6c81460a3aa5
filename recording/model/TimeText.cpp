#include "recording/model/TimeText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <optional>
#include <string_view>

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
    std::chrono::year_month_day day{};
    std::chrono::hh_mm_ss<std::chrono::seconds> time{};
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

/// Reads a number from the beginning of a text, and shortens the text by it.
std::optional<int> TakeNumber(std::string_view& text, std::size_t mostDigits, int least, int most) {
    std::size_t const length = std::min(text.find_first_not_of("0123456789"), std::min(text.size(), mostDigits));
    int number = 0;
    if (std::from_chars(text.data(), text.data() + length, number).ec != std::errc() || number < least ||
        number > most) {
        return std::nullopt;
    }
    text.remove_prefix(length);
    return number;
}

/// Seconds since 1970, if the text begins as `form` has it: Y, m, d, H, M and S stand for numbers. Shortens the text by it.
std::optional<Microseconds> TakeCalendar(std::string_view& text, std::string_view form) {
    struct Field {
        char name;
        std::size_t digits;
        int least;
        int most;
        int value;
    };
    std::array<Field, 6> fields{{{'Y', 4, 0, 9999, 1970},
                                 {'m', 2, 1, 12, 1},
                                 {'d', 2, 1, 31, 1},
                                 {'H', 2, 0, 23, 0},
                                 {'M', 2, 0, 59, 0},
                                 {'S', 2, 0, 60, 0}}}; // with a leap second
    std::string_view rest = text;
    for (char const wanted : form) {
        auto* const field = std::ranges::find(fields, wanted, &Field::name);
        if (field == fields.end()) {
            if (!rest.starts_with(wanted)) {
                return std::nullopt;
            }
            rest.remove_prefix(1);
        } else if (auto const number = TakeNumber(rest, field->digits, field->least, field->most)) {
            field->value = *number;
        } else {
            return std::nullopt;
        }
    }
    auto const& [year, month, day, hour, minute, second] = fields;
    std::chrono::year_month_day const date{std::chrono::year(year.value),
                                           std::chrono::month(static_cast<unsigned>(month.value)),
                                           std::chrono::day(static_cast<unsigned>(day.value))};
    if (!date.ok()) {
        return std::nullopt;
    }
    text = rest;
    auto const moment = std::chrono::sys_days(date) + std::chrono::hours(hour.value) +
                        std::chrono::minutes(minute.value) + std::chrono::seconds(second.value);
    return moment.time_since_epoch().count();
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
    for (std::string_view const form : {"Y-m-dTH:M:S", "Y-m-d H:M:S", "Y-m-dTH:M", "Y-m-d H:M", "Y-m-d"}) {
        std::string_view fraction = text;
        auto const seconds = TakeCalendar(fraction, form);
        if (!seconds) {
            continue;
        }
        if (fraction.ends_with('Z')) {
            fraction.remove_suffix(1);
        }
        bool const isFraction = fraction.size() > 1 && fraction.front() == '.' && fraction.size() <= 10 &&
                                fraction.find_first_not_of("0123456789", 1) == std::string_view::npos;
        if (fraction.empty() || isFraction) {
            double const part = isFraction ? words::ParseNumber<double>("0" + std::string(fraction), "time") : 0.0;
            return *seconds * Second + std::llround(part * 1e6);
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
