#pragma once

#include <string>
#include <string_view>

namespace harvlink::simulator {

/// Whether the characters may stand in a job's name, without its extension.
bool IsJobName(std::string_view text);

std::string UpperCase(std::string_view text);

} // namespace harvlink::simulator
