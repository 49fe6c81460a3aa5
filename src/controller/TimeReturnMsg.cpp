#include <ctime>
#include <stdexcept>
#include <string>

#include "controller/StatusMessages.h"

namespace harvlink {
namespace {

std::int64_t EpochOf(std::string const& startTime) {
    std::tm calendar{};
    ::strptime(startTime.c_str(), "%Y/%m/%d %H:%M", &calendar);
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
        .startTimeEpoch = EpochOf(std::string(startTime.begin(), startTime.end())),
        .elapsedTime = ParseElapsedTime(std::string(elapsedTime.begin(), elapsedTime.end())),
    };
}

} // namespace harvlink
