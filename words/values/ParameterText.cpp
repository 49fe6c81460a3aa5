#include "words/values/ParameterText.h"

namespace harvlink::words {

Parameter ParseParameter(std::string const& text) {
    std::size_t const colon = text.find(':');
    if (colon != std::string::npos) {
        int const type = ParseNumber<int>(std::string_view(text).substr(0, colon), "parameter type");
        return {text, static_cast<SystemParameterType>(type),
                ParseNumber<int>(std::string_view(text).substr(colon + 1), "parameter number")};
    }
    std::size_t const letters = text.size() > 1 && (text[1] == 's' || text[1] == 'S') ? 2 : 3;
    std::string_view const family = std::string_view(text).substr(0, letters);
    SystemParameterType const type = ParseName(ParameterFamilies, family, "family of parameters");
    return {text, type, ParseNumber<int>(std::string_view(text).substr(family.size()), "parameter number")};
}

bool BelongsToGroup(SystemParameterType type) {
    using enum SystemParameterType;
    return type == S1C || type == S1E || type == S2E;
}

} // namespace harvlink::words
