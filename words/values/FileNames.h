#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "harvlink/FileInterface.h"

namespace harvlink::words {

inline constexpr char const* FileNamesHelp =
    "Names may be globs, such as '*.JBI' in quotes. Upper and lower case are the same on the controller.";

/// Whether a name has wildcards.
bool IsGlob(std::string_view name);

/// Whether a file name fits a glob; upper and lower case are the same.
bool FitsGlob(std::string const& glob, std::string const& name);

/// The kinds of files that may fit a name or glob: one for a plain extension, several for an extension with wildcards,
/// none for an unknown one.
std::vector<FileType> KindsOf(std::string_view name);

/// "JBI", "DAT" and so on.
std::string ExtensionOf(FileType type);

/// The name under which a file of the controller is stored here: its own in UTF-8, or that of SafeName if it is too long, begins
/// with a dot, holds a slash, or has something that can't be printed.
std::string LocalName(std::string_view name);

} // namespace harvlink::words
