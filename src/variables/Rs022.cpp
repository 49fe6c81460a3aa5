#include "variables/Rs022.h"

#include <vector>

#include "wire/HelperFunction.h"

namespace harvlink {

std::optional<int> Rs022FromFile(std::string const& text) {
    constexpr std::size_t parameterItem = 4;
    constexpr std::size_t rs022Field = 2;

    std::vector<std::string> items;
    HelperFunction::SplitStringOnCLRF(items, text, false);
    if (items.size() <= parameterItem) {
        return std::nullopt;
    }
    std::vector<std::string> fields;
    HelperFunction::SplitStringOnChar(fields, items[parameterItem], ',', false);
    if (fields.size() <= rs022Field) {
        return std::nullopt;
    }
    return fields[rs022Field] == "1" ? 1 : 0;
}

} // namespace harvlink
