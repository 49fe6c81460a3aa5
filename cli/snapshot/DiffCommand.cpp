#include <filesystem>
#include <memory>
#include <ostream>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "cli/snapshot/Capture.h"
#include "cli/snapshot/Difference.h"
#include "cli/snapshot/DifferenceText.h"
#include "cli/snapshot/Folder.h"
#include "cli/snapshot/SnapshotCommands.h"
#include "cli/snapshot/Staging.h"
#include "words/text/Encoding.h"
#include "words/text/InputError.h"
#include "words/text/Path.h"

namespace harvlink::cli::snapshot {

namespace {

namespace filesystem = std::filesystem;

constexpr char const* Live = "live";

// The exit status of diff(1).
constexpr int Same = 0;
constexpr int Different = 1;
constexpr int Trouble = 2;

constexpr char const* DiffNotes =
    "A and B are folders of snapshots. One of them may be the word live, which stands for\n"
    "the controller of --host: the tool reads from it the sections that the snapshot has.\n"
    "For a folder with the name live, write ./live.\n"
    "Exit status: 0 the same, 1 different, 2 something could not be compared.";

struct DiffArguments {
    std::string before;
    std::string after;
};

void ShowNotes(Output& output, Difference const& difference) {
    for (std::string const& section : difference.notTaken) {
        output.console().err << fmt::format("harvlink: only one of the two has {}; they were not compared\n", section);
    }
    for (std::string const& section : difference.incomplete) {
        output.Problem(fmt::format("{} were not read completely; only what both have was compared", section));
    }
}

bool ReadLive(Session& session, Output& output, Selection const& selection, Snapshot& snapshot) {
    StatusInfo status;
    Connection const connection = session.Open(Access::Observe, status);
    if (!connection) {
        output.Failure(status);
        return false;
    }
    ScratchSpace const scratch(filesystem::temp_directory_path());
    snapshot = Capture(*connection, session.settings().host, selection, output, scratch.File());
    for (Missing const& part : snapshot.missing) {
        output.Failure(part.status, part.what);
    }
    return true;
}

int Diff(Session& session, Output& output, DiffArguments const& arguments) {
    bool const isBeforeLive = arguments.before == Live;
    bool const isAfterLive = arguments.after == Live;
    Snapshot before = isBeforeLive ? Snapshot{} : Read(PathOf(arguments.before));
    Snapshot after = isAfterLive ? Snapshot{} : Read(PathOf(arguments.after));
    // Texts of the controller are compared as they were saved.
    SetControllerEncoding(TextEncoding(isBeforeLive ? after.encoding : before.encoding));
    if ((isBeforeLive && !ReadLive(session, output, after.selection, before)) ||
        (isAfterLive && !ReadLive(session, output, before.selection, after))) {
        return Trouble;
    }
    Difference const difference = Compare(before, after);
    if (output.json) {
        output.Show(DifferenceJson(difference));
    } else {
        ShowChanges(output.console().out, difference.changes, output.HasColour());
        output.console().out << (difference.IsSame() ? "no difference\n" : "") << std::flush;
    }
    ShowNotes(output, difference);
    return !difference.incomplete.empty() ? Trouble : difference.IsSame() ? Same : Different;
}

} // namespace

void AddDiff(CLI::App& family, Session& session) {
    auto arguments = std::make_shared<DiffArguments>();
    CLI::App* const verb = family.add_subcommand("diff", "Show what has changed from one snapshot to another");
    verb->add_option("A", arguments->before, "Folder of the older snapshot, or live")->type_name("FOLDER")->required();
    verb->add_option("B", arguments->after, "Folder of the newer snapshot, or live")->type_name("FOLDER")->required();
    SetExamples(*verb, {"snapshot diff cell3 live", "snapshot diff monday tuesday --json"}, DiffNotes);
    verb->callback([arguments, &session] {
        bool const isLive = arguments->before == Live || arguments->after == Live;
        if (arguments->before == Live && arguments->after == Live) {
            throw InputError("both are live, the same controller; give the folder of a snapshot for one of them");
        }
        if (isLive) {
            session.CheckHost();
        }
        session.Locally([arguments, &session](Output& output) {
            try {
                return Diff(session, output, *arguments);
            } catch (std::exception const& error) {
                output.Problem(error.what());
                return Trouble;
            }
        });
    });
}

} // namespace harvlink::cli::snapshot
