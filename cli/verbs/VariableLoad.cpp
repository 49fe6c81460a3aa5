#include "cli/verbs/VariableLoad.h"

#include <algorithm>
#include <istream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/output/Progress.h"
#include "cli/program/CommandLine.h"
#include "cli/program/Help.h"
#include "cli/program/RepeatedRead.h"
#include "cli/program/Session.h"
#include "cli/program/VariableAccess.h"
#include "cli/program/Writes.h"
#include "words/text/Csv.h"
#include "words/values/VariableFile.h"
#include "words/values/VariableText.h"

namespace harvlink::cli {

namespace {

constexpr char const* StandardInput = "-";

constexpr char const* LoadNotes =
    "If an answer is lost, the variable is read back, and written again only if it does not hold the value.\n"
    "If another program has changed it in between, it is then written twice. A refused variable is reported\n"
    "and the others are still written.\n"
    "At the end the command reports what was written, what failed and why, and what was not tried\n"
    "because the controller no longer answered. FILE - is standard input.\n";

struct LoadArguments {
    std::string path;
    bool dryRun = false;
};

using Assignments = std::vector<VariableAssignment>;

Assignments ReadFile(std::string const& path, Console& console) {
    if (path != StandardInput) {
        return ParseVariableFile(path, ReadTextFile(path));
    }
    return ParseVariableFile("standard input", std::string(std::istreambuf_iterator<char>(console.in), {}));
}

int Load(Session& session, Output& output, Assignments const& assignments) {
    StatusInfo status;
    Connection const connection = session.Open(Access::Operate, status);
    WriteReport report;
    if (connection) {
        std::vector<PendingWrite> writes;
        for (VariableAssignment const& assignment : assignments) {
            writes.push_back(PendingVariable(*connection->Variables, assignment, AfterLoss::WriteAgain));
        }
        report = WriteEach(output, "Writing", writes, AfterFailure::GoOn);
    } else {
        output.Failure(status);
        std::transform(assignments.begin(), assignments.end(), std::back_inserter(report.notTried),
                       [](VariableAssignment const& assignment) { return VariableName(assignment.address); });
    }
    ShowReport(output, report, "variable");
    return output.HasFailed() ? ExitStatus::Failure : ExitStatus::Success;
}

Json ShownValue(Output& output, VariableValue const& value) {
    return output.json ? VariableValueJson(value) : Json(FormatVariableValue(value));
}

/// Shows what loading would change; writes nothing.
int ShowChanges(Session& session, Output& output, Assignments const& assignments) {
    StatusInfo opened;
    Connection const connection = session.Open(Access::Observe, opened);
    Json changes = Json::array();
    std::size_t same = 0;
    std::vector<WriteFailure> failures;
    if (!connection) {
        output.Failure(opened);
    } else {
        Progress progress(output, "Comparing");
        for (VariableAssignment const& assignment : assignments) {
            VariableValue present;
            std::string const name = VariableName(assignment.address);
            StatusInfo status = ReadRepeatedly(progress, "Comparing " + name, [&] {
                return ReadVariable(*connection->Variables, assignment.address, present);
            });
            if (status.StatusCode != 0) {
                failures.push_back({name, status});
                if (IsSilence(status)) {
                    break;
                }
            } else if (FormatVariableValue(present) == FormatVariableValue(assignment.value)) {
                ++same;
            } else {
                changes.push_back({{"variable", name},
                                   {"before", ShownValue(output, present)},
                                   {"after", ShownValue(output, assignment.value)}});
            }
        }
    }
    for (WriteFailure const& failure : failures) {
        output.Failure(failure.status, failure.name);
    }
    std::size_t const left = assignments.size() - same - changes.size();
    output.Show(Json{{"would_change", changes.size()}, {"same", same}, {"unknown", left}, {"changes", changes}});
    return output.HasFailed() ? ExitStatus::Failure : ExitStatus::Success;
}

} // namespace

void AddVariableLoad(CLI::App& family, Session& session) {
    auto arguments = std::make_shared<LoadArguments>();
    CLI::App* const verb =
        family.add_subcommand("load", "Write the variables of a CSV file; nothing is written if a line is wrong");
    verb->add_option("FILE", arguments->path, "CSV with the header line variable,value; - for standard input")
        ->type_name("FILE")
        ->required();
    verb->add_flag("--dry-run", arguments->dryRun, "Show what would change, and write nothing");
    SetExamples(*verb, {"var load vars.csv", "var load vars.csv --dry-run", "var load - < vars.csv"},
                std::string(LoadNotes) + VariableHelp);
    verb->callback([arguments, &session] {
        session.UseEncoding();
        session.CheckHost();
        Assignments const assignments = ReadFile(arguments->path, session.output().console());
        session.Locally([isDry = arguments->dryRun, assignments, &session](Output& output) {
            return isDry ? ShowChanges(session, output, assignments) : Load(session, output, assignments);
        });
    });
}

} // namespace harvlink::cli
