#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/CommandLine.h"
#include "cli/program/Help.h"
#include "cli/program/Interrupt.h"
#include "cli/program/ScratchSpace.h"
#include "cli/program/Session.h"
#include "cli/snapshot/Capture.h"
#include "cli/snapshot/Folder.h"
#include "cli/snapshot/Manifest.h"
#include "cli/snapshot/SnapshotCommands.h"
#include "cli/snapshot/Staging.h"
#include "words/text/Path.h"
#include "words/values/FileNames.h"
#include "words/values/VariableText.h"

namespace harvlink::cli::snapshot {

namespace {

namespace filesystem = std::filesystem;

constexpr char const* SaveNotes =
    "The folder gets its name when everything is read; Ctrl-C removes it at once. Parts that\n"
    "could not be read are listed, and the exit status is 1. An incomplete snapshot\n"
    "never replaces another: it is written to FOLDER.incomplete instead. Variables,\n"
    "signals, registers and parameters are read from their first number to the first\n"
    "that the controller refuses, parameters to 999 at most.";

struct SaveArguments {
    std::string folder;
    Selection selection;
    bool force = false;
};

filesystem::path IncompletePlace(filesystem::path const& place) {
    return PathOf(TextOf(place) + ".incomplete");
}

void ShowMissing(Output& output, Snapshot const& snapshot) {
    for (Missing const& part : snapshot.missing) {
        output.Failure(part.status, part.what);
    }
}

void ShowSaved(Output& output, Snapshot const& snapshot, filesystem::path const& place) {
    Json document{{"path", TextOf(place)}, {"complete", snapshot.IsComplete()}};
    document["entries"] = ManifestJson(snapshot)["entries"];
    output.Show(document);
}

StatusInfo Save(QuorvanController& robot, std::string const& host, Output& output, SaveArguments const& arguments) {
    filesystem::path place = CheckTarget(PathOf(arguments.folder), arguments.force);
    ScratchSpace scratch(place.parent_path());
    Snapshot const snapshot = Capture(robot, host, arguments.selection, output, scratch.File());
    ShowMissing(output, snapshot);
    if (snapshot.IsEmpty()) {
        output.Problem("nothing was written");
        return {};
    }
    Interrupt const interrupt; // what is half written must be removed or moved back
    filesystem::path const finished = scratch.Path() / "finished";
    filesystem::create_directory(finished);
    Write(snapshot, finished);
    FlushFolder(finished);
    // The first check saved the user a long wait for a refusal. Something may have been written there since.
    place = CheckTarget(place, arguments.force);
    if (!snapshot.IsComplete() && filesystem::exists(place) && !filesystem::is_empty(place)) {
        place = CheckTarget(IncompletePlace(place), true);
    }
    if (interrupt.HasCome()) {
        throw Interrupted("interrupted, nothing was written");
    }
    MoveInto(finished, place, scratch);
    ShowSaved(output, snapshot, place);
    return {};
}

} // namespace

void AddSave(CLI::App& family, Session& session) {
    auto arguments = std::make_shared<SaveArguments>();
    CLI::App* const verb =
        family.add_subcommand("save", "Read the contents of a controller into a folder of text files");
    verb->add_option("FOLDER", arguments->folder, "Folder to write; it may be new, empty or, with --force, a snapshot")
        ->type_name("FOLDER")
        ->required();
    Selection& selection = arguments->selection;
    verb->add_option("--only", selection.sections, "Sections (default: all)")
        ->type_name("groups|variables|signals|registers|parameters|files");
    verb->add_option("--var", selection.variables, "Variables and ranges, such as B0..B99 (default: all)")
        ->type_name("VARIABLE");
    verb->add_option("--param", selection.parameters, "Parameters and ranges, such as RS0..RS299 (default: all)")
        ->type_name("PARAMETER");
    verb->add_option("--files", selection.files, "Names and globs of files (default: all)")->type_name("NAME");
    verb->add_flag("--force", arguments->force, "Replace an existing snapshot");
    SetExamples(
        *verb,
        {"snapshot save cell3", "snapshot save cell3 --force", "snapshot save jobs --only files --files '*.JBI'"},
        SaveNotes);
    verb->callback([arguments, &session] {
        Check(arguments->selection);
        std::string const folder = session.FolderFor(arguments->folder);
        if (folder != arguments->folder) {
            filesystem::create_directory(PathOf(arguments->folder)); // has one for each cell
        }
        arguments->folder = folder;
        filesystem::path const place = CheckTarget(PathOf(arguments->folder), arguments->force);
        if (filesystem::exists(IncompletePlace(place))) {
            CheckTarget(IncompletePlace(place), true);
        }
        session.OnConnection(Access::Observe, [arguments, &session](QuorvanController& robot, Output& output) {
            return Save(robot, session.settings().host, output, *arguments);
        });
    });
}

} // namespace harvlink::cli::snapshot
