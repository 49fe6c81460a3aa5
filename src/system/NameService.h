#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace harvlink {

/// What the system's name service knows of a name.
struct NameAnswer {
    std::vector<std::uint32_t> addresses; ///< IPv4, in the byte order of this computer
    std::string failure; ///< why there are none
};

/// Keeps the code of the library loaded until the process ends: a question can outlast the call that asked it.
void StayLoaded();

/// Asks for the IPv4 addresses of a name. It may take long.
NameAnswer AskNameService(std::string const& name);

} // namespace harvlink
