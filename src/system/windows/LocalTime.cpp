#include "system/LocalTime.h"

namespace harvlink {

std::tm LocalTime(std::time_t moment) {
    std::tm local{};
    (void)::localtime_s(&local, &moment); // its arguments stand the other way round here than in the standard
    return local;
}

} // namespace harvlink
