#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/program/CommandLine.h"
#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "cli/snapshot/Folder.h"
#include "cli/snapshot/Manifest.h"
#include "cli/snapshot/SnapshotCommands.h"
#include "words/text/Encoding.h"
#include "words/text/InputError.h"
#include "words/text/Path.h"
#include "words/text/Printable.h"

namespace harvlink::cli::snapshot {

namespace {

struct ShowArguments {
    std::string folder;
    std::string section;
};

Json TableJson(Entries const& table, std::string_view name, std::string_view value) {
    Json rows = Json::array();
    for (Entry const& entry : table) {
        rows.push_back({{std::string(name), entry.name}, {std::string(value), entry.value}});
    }
    return rows;
}

Json FilesJson(Snapshot const& snapshot) {
    Json rows = Json::array();
    for (auto const& [name, contents] : snapshot.files) {
        rows.push_back({{"name", ControllerText(name)}, {"bytes", contents.size()}});
    }
    return rows;
}

// The manifest also holds what the program needs to compare it, which people do not want to see.
Json Summary(Snapshot const& snapshot, bool json) {
    Json summary = ManifestJson(snapshot);
    if (!json) {
        for (char const* const key : {"format", "format_version", "tool", "selection"}) {
            summary.erase(key);
        }
        if (snapshot.IsComplete()) {
            summary.erase("missing");
        }
    }
    return summary;
}

void ShowFile(Output& output, Snapshot const& snapshot, std::string const& name) {
    auto const file = snapshot.files.find(ControllerBytes(name));
    if (file == snapshot.files.end()) {
        throw InputError(fmt::format("the snapshot has no file '{}'; its section files lists what it has", name));
    }
    if (output.json) {
        output.Show(Json{{"name", name}, {"contents", ControllerEncoding().Decode(file->second)}});
    } else if (output.console().outputIsTerminal) {
        output.console().out << PrintableLines(ControllerEncoding().Decode(file->second)) << std::flush;
    } else {
        output.console().out << file->second << std::flush;
    }
}

/// The sections that can be shown, in the order in which the help names them.
std::vector<std::string_view> SectionsOf(Snapshot const& snapshot) {
    std::vector<std::string_view> sections;
    for (TableKind const& kind : TableKinds) {
        if (snapshot.tables.contains(kind.section)) {
            sections.push_back(kind.section);
        }
    }
    if (snapshot.HasSection(FilesSection)) {
        sections.push_back(FilesSection);
    }
    return sections;
}

void ShowSection(Output& output, Snapshot const& snapshot, std::string const& section) {
    auto const kind = std::find_if(TableKinds.begin(), TableKinds.end(),
                                   [&](TableKind const& candidate) { return candidate.section == section; });
    auto const table = snapshot.tables.find(section);
    if (kind != TableKinds.end() && table != snapshot.tables.end()) {
        output.Show(TableJson(table->second, kind->name, kind->value));
    } else if (section == FilesSection && snapshot.HasSection(section)) {
        output.Show(FilesJson(snapshot));
    } else {
        throw InputError(fmt::format("the snapshot has no section '{}'; it has: {}", section,
                                     fmt::join(SectionsOf(snapshot), ", ")));
    }
}

int Show(Output& output, ShowArguments const& arguments) {
    constexpr std::string_view FilePrefix = "files/";
    Snapshot const snapshot = Read(PathOf(arguments.folder));
    SetControllerEncoding(TextEncoding(snapshot.encoding));
    if (arguments.section.empty()) {
        output.Show(Summary(snapshot, output.json));
    } else if (arguments.section.starts_with(FilePrefix)) {
        ShowFile(output, snapshot, arguments.section.substr(FilePrefix.size()));
    } else {
        ShowSection(output, snapshot, arguments.section);
    }
    return ExitStatus::Success;
}

} // namespace

void AddShow(CLI::App& family, Session& session) {
    auto arguments = std::make_shared<ShowArguments>();
    CLI::App* const verb = family.add_subcommand("show", "Show a snapshot, one of its sections or one of its files");
    verb->add_option("FOLDER", arguments->folder, "Folder of the snapshot")->type_name("FOLDER")->required();
    verb->add_option("SECTION", arguments->section, "A section, or files/NAME")
        ->type_name("groups|variables|signals|registers|parameters|files");
    SetExamples(*verb, {"snapshot show cell3", "snapshot show cell3 variables", "snapshot show cell3 files/MAIN.JBI"});
    verb->callback(
        [arguments, &session] { session.Locally([arguments](Output& output) { return Show(output, *arguments); }); });
}

} // namespace harvlink::cli::snapshot
