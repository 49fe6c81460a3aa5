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

/// The number in `text` from `first` up to `last`.
std::uint32_t NumberBetween(std::string const& text, std::size_t first, std::size_t last) {
    return static_cast<std::uint32_t>(std::stoi(text.substr(first, last - first)));
}

std::size_t Find(std::string const& text, char mark, std::size_t from) {
    std::size_t const position = text.find(mark, from);
    if (position == std::string::npos) {
        throw std::invalid_argument("elapsed time");
    }
    return position;
}

ElapsedTime ParseElapsedTime(std::string const& text) {
    std::size_t const colon = Find(text, ':', 0);
    std::size_t const apostrophe = Find(text, '\'', colon);
    return {
        .seconds = NumberBetween(text, apostrophe + 1, text.size()),
        .minutes = NumberBetween(text, colon + 1, apostrophe),
        .hours = NumberBetween(text, 0, colon),
    };
}

} // namespace

TimeReturnMsg::operator TimeData() const {
    return {
        .startTimeEpoch = EpochOf(std::string(startTime.begin(), startTime.end())),
        .elapsedTime = ParseElapsedTime(std::string(elapsedTime.begin(), elapsedTime.end())),
    };
}

} // namespace harvlink
