#include "system/LocalTime.h"

namespace harvlink {

std::tm LocalTime(std::time_t moment) {
    std::tm local{};
    ::localtime_r(&moment, &local);
    return local;
}

} // namespace harvlink
