#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "harvlink/FileInterface.h"

namespace harvlink::simulator {

/// A name as the store keeps it: upper case, at most 32 bytes, ending in a known extension, made of letters, digits and
/// "-_#$.+&%" only, not starting with a dot. So no name leads out of a folder. Nothing if the text can't be such a name.
std::optional<std::string> FileNameFrom(std::string_view text);

/// By extension, in any case; nothing if the controller has no such files.
std::optional<FileType> FileTypeOf(std::string_view name);

/// Whether a client may write files of this kind at all.
bool IsWritable(FileType type);

/// Whether a pattern names files that the controller has: its extension is a known one, or has '*' or '?' in it.
bool IsFilePattern(std::string_view pattern);

/// '*' stands for any run of characters, '?' for any one. Both sides in upper case.
bool MatchesPattern(std::string_view pattern, std::string_view name);

} // namespace harvlink::simulator
