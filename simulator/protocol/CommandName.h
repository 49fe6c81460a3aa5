#pragma once

#include <cstdint>
#include <string_view>

namespace harvlink::simulator {

/// The name of a command of the robot control port; "unknown" for a number that no command has.
std::string_view NameOfCommand(std::uint16_t command);

/// The name of a service of the file control port.
std::string_view NameOfFileService(std::uint8_t service);

} // namespace harvlink::simulator
