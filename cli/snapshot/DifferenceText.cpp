#include "cli/snapshot/DifferenceText.h"

#include <ostream>
#include <string>

#include <fmt/color.h>
#include <fmt/format.h>

#include "cli/output/Words.h"
#include "words/text/Encoding.h"
#include "words/text/Printable.h"

namespace harvlink::cli::snapshot {

namespace {

Json LinesJson(std::vector<LineChange> const& lines) {
    Json rows = Json::array();
    for (LineChange const& line : lines) {
        rows.push_back({{"sign", std::string(1, line.sign)}, {"line", line.line}, {"text", ControllerText(line.text)}});
    }
    return rows;
}

std::string Text(LineChange const& line, bool hasColour) {
    std::string const text = fmt::format("    {}{}  {}", line.sign, line.line, Printable(ControllerText(line.text)));
    fmt::terminal_color const colour = line.sign == '-' ? fmt::terminal_color::red : fmt::terminal_color::green;
    return hasColour ? fmt::format(fmt::fg(colour), "{}", text) : text;
}

} // namespace

Json ChangesJson(std::vector<ChangedEntry> const& list) {
    Json changes = Json::array();
    for (ChangedEntry const& change : list) {
        Json row{{"section", change.section},
                 {"name", ControllerText(change.name)},
                 {"before", change.before ? Json(*change.before) : Json()},
                 {"after", change.after ? Json(*change.after) : Json()}};
        if (change.section == FilesSection) {
            row["lines"] = LinesJson(change.lines);
        }
        changes.push_back(row);
    }
    return changes;
}

Json DifferenceJson(Difference const& difference) {
    return {{"same", difference.IsSame()},
            {"changes", ChangesJson(difference.changes)},
            {"incomplete", difference.incomplete},
            {"only_in_one", difference.notTaken}};
}

void ShowChanges(std::ostream& out, std::vector<ChangedEntry> const& changes, bool hasColour) {
    std::string section;
    for (ChangedEntry const& change : changes) {
        if (change.section != section) {
            section = change.section;
            out << section << '\n';
        }
        out << fmt::format("  {}  {} -> {}\n", Printable(ControllerText(change.name)),
                           Printable(change.before.value_or("(none)")), Printable(change.after.value_or("(none)")));
        for (LineChange const& line : change.lines) {
            out << Text(line, hasColour) << '\n';
        }
    }
    out << std::flush;
}

} // namespace harvlink::cli::snapshot
