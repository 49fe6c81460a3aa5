#pragma once

#include <filesystem>
#include <string>

namespace harvlink::gateway {

/// The first line of a token file. Throws words::InputError if it is too short to keep anybody out.
std::string ReadToken(std::filesystem::path const& file);

} // namespace harvlink::gateway
