#include "simulator/model/FixedText.h"

namespace harvlink::simulator {

std::string CalendarText(std::time_t when) {
    std::tm fields{};
    localtime_r(&when, &fields);
    std::array<char, 32> text{};
    auto const length = std::strftime(text.data(), text.size(), "%Y/%m/%d %H:%M", &fields);
    return {text.data(), length};
}

} // namespace harvlink::simulator
