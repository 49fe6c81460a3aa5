#include <algorithm>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/program/CommandLine.h"
#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "cli/program/Writes.h"
#include "cli/snapshot/Capture.h"
#include "cli/snapshot/DifferenceText.h"
#include "cli/snapshot/Folder.h"
#include "cli/snapshot/RestorePlan.h"
#include "cli/snapshot/SnapshotCommands.h"
#include "cli/snapshot/Staging.h"
#include "words/text/Encoding.h"
#include "words/text/InputError.h"
#include "words/text/Path.h"

namespace harvlink::cli::snapshot {

namespace {

namespace filesystem = std::filesystem;

constexpr char const* RestoreNotes =
    "What can be written back: files (JBI, DAT, CND, LST), variables, registers, and signals, which are\n"
    "general outputs, network inputs and the interface panel (network inputs alone before generation YA).\n"
    "Groups and parameters can't be written. Signals are restored only with --only signals, as whatever\n"
    "is wired to them may move.\n"
    "The command reads the controller, shows the plan, asks, writes, reads again and shows what still\n"
    "differs. Entries that only the controller has are not deleted. If an answer is lost, the entry is read\n"
    "back, and written again only if the controller does not hold it; a signal is never written again.\n"
    "Exit status: 0 if nothing of the plan differs at the end.";

struct RestoreArguments {
    std::string folder;
    std::vector<std::string> only;
    bool dryRun = false;
};

std::vector<std::string_view> SectionsOf(std::vector<std::string> const& only, Snapshot const& saved) {
    std::vector<std::string_view> sections;
    for (std::string_view const section : RestorableSections) {
        bool const isNamed = std::find(only.begin(), only.end(), section) != only.end();
        if (saved.HasSection(section) && (only.empty() ? section != "signals" : isNamed)) {
            sections.push_back(section);
        }
    }
    return sections;
}

void CheckSections(std::vector<std::string> const& only, Snapshot const& saved) {
    for (std::string const& section : only) {
        if (std::find(RestorableSections.begin(), RestorableSections.end(), section) == RestorableSections.end()) {
            throw InputError(
                fmt::format("'{}' can't be written back; there are: {}", section, fmt::join(RestorableSections, ", ")));
        }
        if (!saved.HasSection(section)) {
            throw InputError(fmt::format("the snapshot has no section '{}'", section));
        }
    }
}

Snapshot ReadSections(QuorvanController& robot, Session& session, Output& output, Snapshot const& saved,
                      std::vector<std::string_view> const& sections) {
    Selection selection = saved.selection;
    selection.sections.assign(sections.begin(), sections.end());
    ScratchSpace const scratch(filesystem::temp_directory_path());
    Snapshot live = Capture(robot, session.settings().host, selection, output, scratch.File());
    for (Missing const& part : live.missing) {
        output.Failure(part.status, part.what);
    }
    return live;
}

void ShowPlan(Output& output, RestorePlan const& plan) {
    if (output.json) {
        return; // it is part of the result
    }
    std::ostream& out = output.console().out;
    ShowChanges(out, plan.changes, output.HasColour());
    out << fmt::format("{} to write back\n", plan.changes.size());
    if (!plan.impossible.empty()) {
        out << "\nCan't be written back:\n";
        ShowChanges(out, plan.impossible, output.HasColour());
    }
    out << std::flush;
}

/// Those of the plan that the controller does not have even now.
std::vector<ChangedEntry> Remaining(RestorePlan const& plan, RestorePlan const& now) {
    std::set<std::pair<std::string, std::string>> planned;
    for (ChangedEntry const& change : plan.changes) {
        planned.emplace(change.section, change.name);
    }
    std::vector<ChangedEntry> remaining;
    std::copy_if(now.changes.begin(), now.changes.end(), std::back_inserter(remaining),
                 [&](ChangedEntry const& change) {
                     return planned.contains({change.section, change.name});
                 });
    return remaining;
}

void ShowResult(Output& output, RestorePlan const& plan, WriteReport const& report,
                std::vector<ChangedEntry> const& remaining) {
    if (output.json) {
        Json document{{"plan", ChangesJson(plan.changes)}, {"impossible", ChangesJson(plan.impossible)}};
        document.update(ReportJson(report, "name"));
        document["remaining"] = ChangesJson(remaining);
        output.Show(document);
    } else if (!remaining.empty()) {
        output.console().out << "\nStill differs:\n";
        ShowChanges(output.console().out, remaining, output.HasColour());
    }
    for (WriteFailure const& failure : report.failures) {
        output.Failure(failure.status, ControllerText(failure.name));
    }
    if (!output.json) {
        output.console().out << fmt::format("{} of {} written, {} still differ\n", report.written, plan.changes.size(),
                                            remaining.size())
                             << std::flush;
    }
    ThrowIfInterrupted(report);
}

std::string Consequence(RestorePlan const& plan) {
    return fmt::format("Restoring overwrites {} values and files of the controller", plan.changes.size());
}

int Restore(Session& session, Output& output, RestoreArguments const& arguments, Snapshot const& saved) {
    StatusInfo status;
    Connection const connection = session.Open(arguments.dryRun ? Access::Observe : Access::Operate, status);
    if (!connection) {
        output.Failure(status);
        return ExitStatus::Failure;
    }
    SetControllerEncoding(TextEncoding(saved.encoding));
    std::vector<std::string_view> const sections = SectionsOf(arguments.only, saved);
    auto const compare = [&] {
        return MakePlan(ReadSections(*connection, session, output, saved, sections), saved, sections, *connection->IO);
    };
    RestorePlan const plan = compare();
    ShowPlan(output, plan);
    if (arguments.dryRun || plan.changes.empty()) {
        if (arguments.dryRun && !output.json) {
            return output.HasFailed() ? ExitStatus::Failure : ExitStatus::Success;
        }
        ShowResult(output, plan, {}, arguments.dryRun ? plan.changes : std::vector<ChangedEntry>{});
        return output.HasFailed() ? ExitStatus::Failure : ExitStatus::Success;
    }
    if (!session.Confirm(Consequence(plan))) {
        return ExitStatus::Failure;
    }
    WriteReport const report = WriteEach(output, "Writing", WritesOf(plan, saved, *connection), AfterFailure::GoOn);
    std::vector<ChangedEntry> remaining = plan.changes;
    if (!report.wasInterrupted) {
        remaining = Remaining(plan, compare());
    }
    ShowResult(output, plan, report, remaining);
    return output.HasFailed() || !remaining.empty() ? ExitStatus::Failure : ExitStatus::Success;
}

} // namespace

void AddRestore(CLI::App& family, Session& session) {
    auto arguments = std::make_shared<RestoreArguments>();
    CLI::App* const verb = family.add_subcommand("restore", "Write a snapshot back to a controller, after a plan");
    verb->add_option("FOLDER", arguments->folder, "Folder of the snapshot")->type_name("FOLDER")->required();
    verb->add_option("--only", arguments->only, "Sections (default: all but signals)")
        ->type_name("files|variables|registers|signals");
    verb->add_flag("--dry-run", arguments->dryRun, "Show the plan, and write nothing");
    SetExamples(*verb,
                {"snapshot restore cell3 --dry-run", "snapshot restore cell3 --only variables registers",
                 "snapshot restore cell3 --yes"},
                RestoreNotes);
    verb->callback([arguments, &session] {
        auto saved = std::make_shared<Snapshot>(Read(PathOf(arguments->folder)));
        CheckSections(arguments->only, *saved);
        session.CheckHost();
        if (!arguments->dryRun) {
            session.CheckConfirmable("Restoring overwrites what the controller holds");
        }
        session.Locally(
            [arguments, saved, &session](Output& output) { return Restore(session, output, *arguments, *saved); });
    });
}

} // namespace harvlink::cli::snapshot
