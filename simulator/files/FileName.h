#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "harvlink/FileInterface.h"

namespace harvlink::simulator {

/// A file name as the store keeps it: upper case, at most 32 bytes, with a known extension, made of letters, digits and
/// "-_#$.+&%", not starting with a dot. So no name leads out of a folder. Nothing if the text is not such a name.
std::optional<std::string> FileNameFrom(std::string_view text);

/// By extension, in any case; nothing if the controller has no such files.
std::optional<FileType> FileTypeOf(std::string_view name);

/// Whether a client may write files of this kind.
bool IsWritable(FileType type);

/// Whether a pattern can match files of the controller: its extension is a known one, or contains '*' or '?'.
bool IsFilePattern(std::string_view pattern);

/// '*' matches any number of characters, '?' exactly one. Both texts are in upper case.
bool MatchesPattern(std::string_view pattern, std::string_view name);

} // namespace harvlink::simulator
