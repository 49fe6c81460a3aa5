#include "gateway/sparkplug/SessionCounter.h"

#include <charconv>
#include <fstream>
#include <string>
#include <system_error>

namespace harvlink::gateway::sparkplug {

namespace {

std::optional<std::uint8_t> ReadNumber(std::filesystem::path const& file) {
    std::ifstream stream(file);
    std::string line;
    if (!std::getline(stream, line)) {
        return std::nullopt;
    }
    std::uint8_t number = 0;
    auto const [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    bool const isWhole = error == std::errc() && end == line.data() + line.size();
    return isWhole ? std::optional(number) : std::nullopt;
}

} // namespace

SessionCounter::SessionCounter(std::filesystem::path file) : file_(std::move(file)) {
    if (!file_.empty()) {
        last_ = ReadNumber(file_);
    }
}

bool SessionCounter::Begin() {
    before_ = last_;
    last_ = last_ ? static_cast<std::uint8_t>(*last_ + 1) : std::uint8_t{0};
    return Write();
}

void SessionCounter::TakeBack() {
    last_ = before_;
    Write();
}

/// By way of a second file: a process that is killed leaves the old number or the new one.
bool SessionCounter::Write() const {
    if (file_.empty()) {
        return true;
    }
    std::error_code error;
    if (!last_) {
        std::filesystem::remove(file_, error);
        return !error;
    }
    std::filesystem::create_directories(file_.parent_path(), error); // what fails is seen below
    std::filesystem::path const fresh = file_.string() + ".new";
    {
        std::ofstream stream(fresh, std::ios::trunc);
        stream << static_cast<unsigned>(*last_) << '\n';
        if (!stream.flush()) {
            return false;
        }
    }
    std::filesystem::rename(fresh, file_, error);
    return !error;
}

} // namespace harvlink::gateway::sparkplug
