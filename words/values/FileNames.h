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

/// Whether a name from a controller can be used as a file name here, and does not lead into another folder.
bool IsSafeLocalName(std::string_view name);

} // namespace harvlink::words
