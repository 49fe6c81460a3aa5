#include "harvlink/ControlGroupId.h"

#include <ostream>

namespace harvlink {

std::ostream& operator<<(std::ostream& stream, ControlGroupId const& group) {
    auto const number = static_cast<std::int32_t>(group);
    if (number < 9) {
        stream << 'R' << number;
    } else if (number < 19) {
        stream << 'B' << number - 10;
    } else if (number <= 44) {
        stream << 'S' << number - 20;
    }
    return stream;
}

} // namespace harvlink
