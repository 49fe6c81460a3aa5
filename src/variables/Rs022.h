#pragma once

#include <optional>
#include <string>

#include "harvlink/ControllerStateInterface.h"
#include "wire/SystemParameterMessage.h"

namespace harvlink {

/// Parameter RS022 decides from which number the controller counts its variables; see VariableInstance. From `VersionYA`
/// up it is read as a system parameter, below from the file "RS.PRM".
inline constexpr int Rs022Number = 22;
inline constexpr SytemParamMsgOut Rs022Parameter{.type = static_cast<std::uint32_t>(SystemParameterType::RS),
                                                 .group = 0,
                                                 .number = static_cast<std::uint32_t>(Rs022Number)};

/// The state that the text of "RS.PRM" gives: 1, or 0 for any other value. Nothing if the text is too short.
std::optional<int> Rs022FromFile(std::string const& text);

} // namespace harvlink
