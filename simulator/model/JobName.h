#pragma once

#include <string>
#include <string_view>

namespace harvlink::simulator {

/// Whether a job's name, without its extension, may have these characters.
bool IsJobName(std::string_view text);

std::string UpperCase(std::string_view text);

} // namespace harvlink::simulator
