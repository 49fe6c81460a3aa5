#include "status/HarvlinkLogger.h"

#include <chrono>
#include <ctime>
#include <exception>
#include <fstream>

#include "system/LocalTime.h"

namespace harvlink {
namespace {

std::string Join(int first, int second, int third, char separator) {
    return std::to_string(first) + separator + std::to_string(second) + separator + std::to_string(third);
}

} // namespace

void HarvlinkLogger::LogStatusInfo(StatusInfo const& status) {
    try {
        std::ofstream file("HarvlinkLog.txt", std::ios::app | std::ios::binary); // the same bytes on every system
        file << GetFormattedTime() << ' ' << status << std::endl;
    } catch (std::exception const&) {
        // A log line that cannot be written must not stop the thread that feeds the controller.
        return;
    }
}

std::string HarvlinkLogger::GetFormattedTime() {
    return CurrentDate() + ' ' + CurrentLocalTime();
}

std::string HarvlinkLogger::CurrentDate() {
    auto const today = std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now());
    std::chrono::year_month_day const date{today};
    return Join(static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
                static_cast<int>(static_cast<unsigned>(date.day())), '/');
}

std::string HarvlinkLogger::CurrentLocalTime() {
    std::tm const local = LocalTime(std::time(nullptr));
    return Join(local.tm_hour, local.tm_min, local.tm_sec, ':');
}

} // namespace harvlink
