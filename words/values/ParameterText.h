#pragma once

#include <array>
#include <string>

#include "harvlink/ControllerStateInterface.h"
#include "words/text/Text.h"

namespace harvlink::words {

inline constexpr std::array<Named<SystemParameterType>, 7> ParameterFamilies{{{"S1C", SystemParameterType::S1C},
                                                                              {"S2C", SystemParameterType::S2C},
                                                                              {"S3C", SystemParameterType::S3C},
                                                                              {"S4C", SystemParameterType::S4C},
                                                                              {"RS", SystemParameterType::RS},
                                                                              {"S1E", SystemParameterType::S1E},
                                                                              {"S2E", SystemParameterType::S2E}}};

struct Parameter {
    std::string name;
    SystemParameterType type{};
    int number = 0;
};

/// "S2C430", or "11:33" for a family without a name.
Parameter ParseParameter(std::string const& text);

/// Whether each control group has its own parameters of this family.
bool BelongsToGroup(SystemParameterType type);

} // namespace harvlink::words
