#include <algorithm>
#include <ctime>
#include <stdexcept>
#include <string>
#include <string_view>

#include "controller/StatusMessages.h"

namespace harvlink {
namespace {

void TakeSpace(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
}

/// Takes a number of at most so many digits off `text`, with the space in front of it. A digit that would lead beyond the
/// most is left, as a reader of dates by a pattern leaves it.
bool TakeField(std::string_view& text, int digits, int least, int most, int& number) {
    TakeSpace(text);
    int value = 0;
    int taken = 0;
    while (taken < digits && value * 10 <= most && !text.empty() && text.front() >= '0' && text.front() <= '9') {
        value = value * 10 + (text.front() - '0');
        text.remove_prefix(1);
        ++taken;
    }
    bool const isGood = taken > 0 && value >= least && value <= most;
    number = isGood ? value : number;
    return isGood;
}

bool TakeMark(std::string_view& text, char mark) {
    bool const isThere = text.starts_with(mark);
    text.remove_prefix(isThere ? 1 : 0);
    return isThere;
}

/// Reads "2026/11/22 09:50" in the time zone of this computer. What comes before the first fault counts, as designed:
/// the rest is that of an empty calendar.
std::int64_t EpochOf(std::string_view text) {
    constexpr int firstYear = 1900;
    text = text.substr(0, text.find('\0'));
    std::tm calendar{};
    int year = firstYear;
    int month = 1;
    if (TakeField(text, 4, 0, 9999, year) && TakeMark(text, '/') && TakeField(text, 2, 1, 12, month) &&
        TakeMark(text, '/') && TakeField(text, 2, 1, 31, calendar.tm_mday)) {
        (void)(TakeField(text, 2, 0, 23, calendar.tm_hour) && TakeMark(text, ':') &&
               TakeField(text, 2, 0, 59, calendar.tm_min));
    }
    calendar.tm_year = year - firstYear;
    calendar.tm_mon = month - 1;
    return std::mktime(&calendar);
}

/// Takes the whole number in front of the first `mark` off `text`, and the mark with it.
std::uint32_t TakeNumber(std::string& text, char mark) {
    std::size_t const end = text.find(mark);
    int const number = std::stoi(text.substr(0, end));
    if (end == std::string::npos) {
        throw std::invalid_argument("elapsed time");
    }
    text.erase(0, end + 1);
    return static_cast<std::uint32_t>(number);
}

/// The first field that can't be read decides which exception is thrown.
ElapsedTime ParseElapsedTime(std::string text) {
    std::uint32_t const hours = TakeNumber(text, ':');
    std::uint32_t const minutes = TakeNumber(text, '\'');
    return {.seconds = static_cast<std::uint32_t>(std::stoi(text)), .minutes = minutes, .hours = hours};
}

} // namespace

TimeReturnMsg::operator TimeData() const {
    return {
        .startTimeEpoch = EpochOf({startTime.data(), startTime.size()}),
        .elapsedTime = ParseElapsedTime(std::string(elapsedTime.begin(), elapsedTime.end())),
    };
}

} // namespace harvlink
