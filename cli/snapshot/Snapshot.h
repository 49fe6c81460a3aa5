#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "harvlink/StatusInfo.h"

namespace harvlink::cli::snapshot {

/// A named value, both as text.
struct Entry {
    std::string name;
    std::string value;

    bool operator==(Entry const&) const = default;
};

/// One kind of values, in the order of their numbers.
using Entries = std::vector<Entry>;

/// A section that is stored as a table, with the header of its file.
struct TableKind {
    std::string_view section;
    std::string_view name;
    std::string_view value;
};

inline constexpr std::array<TableKind, 5> TableKinds{{{"groups", "group", "axes"},
                                                      {"variables", "variable", "value"},
                                                      {"signals", "address", "bits"},
                                                      {"registers", "register", "value"},
                                                      {"parameters", "parameter", "value"}}};

/// The section whose parts are files of the controller, byte for byte.
inline constexpr std::string_view FilesSection = "files";

/// The section that identifies the controller: model, software and generation.
inline constexpr std::string_view ControllerSection = "controller";

/// What to read. An empty list stands for all that the controller has.
struct Selection {
    std::vector<std::string> sections;
    std::vector<std::string> variables; ///< ranges
    std::vector<std::string> parameters; ///< ranges
    std::vector<std::string> files; ///< globs

    bool Has(std::string_view section) const;
};

/// A part that could not be read, such as "files/TOOL.CND".
struct Missing {
    std::string what;
    StatusInfo status;
};

/// Everything that was read from a controller at one time.
struct Snapshot {
    std::string host;
    std::string created; ///< in UTC, such as "2026-11-21T10:00:00Z"
    Selection selection;
    std::string encoding = "utf-8"; ///< in which the controller has its texts
    Entries controller;
    std::map<std::string, Entries, std::less<>>
        tables; ///< by section; a section that the controller does not have is not there
    std::map<std::string, std::string, std::less<>> files; ///< contents by name
    std::vector<Missing> missing;
    /// Names of files, by those under which they are stored, if these do not give them back.
    std::map<std::string, std::string, std::less<>> longNames;

    bool IsComplete() const { return missing.empty(); }
    bool HasSection(std::string_view section) const;
    /// Whether no part is missing.
    bool IsComplete(std::string_view section) const;
    /// Whether anything was read at all.
    bool IsEmpty() const;
};

} // namespace harvlink::cli::snapshot
