#pragma once

#include <map>
#include <string>
#include <vector>

#include "harvlink/ControlGroupId.h"

namespace harvlink {

/// Reads the controller's "SYSTEM.SYS": lines ended by line feeds, in sections that begin with a line "//NAME".
///
/// The patterns are simple ones, matched by hand: in time proportional to a line's length and without
/// recursion, however long the line is.
class SystemFileParser {
public:
    explicit SystemFileParser(std::string const& fileText);

    void ParseSystemFile(std::string const& fileText);

    /// Cuts slashes in front and white space behind.
    void FormatSectionName(std::string& name) const;

    /// Replaces `names` by the names of all sections, in byte order.
    void GetSectionNames(std::vector<std::string>& names) const;

    /// Replaces `lines` by the lines of a section. One that does not exist is created, empty.
    void GetSection(std::string const& name, std::vector<std::string>& lines);

    /// The first group that a line names: a robot R1 to R8, else a station. Of a station above 9 only the first digit is
    /// seen. `present` says whether there is one; the result is R1 otherwise.
    ControlGroupId GetControlGroupFromLine(std::string const& line, bool& valid, bool& present) const;

    /// Replaces `groups` by the groups of all lines of a section, repeats included.
    bool GetAllControlGroupsFromSection(std::string const& name, std::vector<ControlGroupId>& groups);

    /// Whether a robot's name line names a base: a "B" before a digit 1 to 8 or a capital letter, anywhere.
    static bool NamesBase(std::string const& robotNameLine);

private:
    std::map<std::string, std::vector<std::string>> sections;
};

} // namespace harvlink
