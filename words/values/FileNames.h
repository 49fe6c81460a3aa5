#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "harvlink/FileInterface.h"

namespace harvlink::words {

inline constexpr char const* FileNamesHelp =
    "Names may be globs, such as '*.JBI' in quotes; on the controller they are compared in any case.";

/// Whether a name has wildcards.
bool IsGlob(std::string_view name);

/// Whether a file name fits a glob; upper and lower case are the same.
bool FitsGlob(std::string const& glob, std::string const& name);

/// The kinds of files that may fit a name or glob: one by its extension, all if that has wildcards, none if it is unknown.
std::vector<FileType> KindsOf(std::string_view name);

/// "JBI", "DAT" and so on.
std::string ExtensionOf(FileType type);

/// Whether a name that a controller gave can be a file name here, without leading into another folder.
bool IsSafeLocalName(std::string_view name);

} // namespace harvlink::words
