#pragma once

#include <filesystem>
#include <string_view>

#include "gateway/config/Config.h"
#include "gateway/config/ConfigError.h"

namespace harvlink::gateway {

/// Reads and checks a configuration. Sends nothing, opens nothing but the files that it names. Throws ConfigError with all that
/// is wrong. `needsControllers`: whether it is wrong to have none.
Config ReadConfigFile(std::filesystem::path const& file, bool needsControllers = true);

/// The same for a text; `name` stands for the file in messages, and the paths in it are relative to its folder.
Config ParseConfig(std::string_view text, std::filesystem::path const& name, bool needsControllers = true);

/// A configuration with all keys and what they mean, which ReadConfigFile takes.
std::string_view ExampleConfig();

} // namespace harvlink::gateway
