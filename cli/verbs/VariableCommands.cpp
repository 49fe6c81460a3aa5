#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/output/Progress.h"
#include "cli/output/Rows.h"
#include "cli/program/CommandLine.h"
#include "cli/program/Help.h"
#include "cli/program/RepeatedRead.h"
#include "cli/program/Session.h"
#include "cli/program/VariableAccess.h"
#include "cli/program/WholeFile.h"
#include "cli/program/Writes.h"
#include "cli/verbs/Commands.h"
#include "cli/verbs/VariableLoad.h"
#include "words/text/Path.h"
#include "words/values/PositionText.h"
#include "words/values/VariableFile.h"
#include "words/values/VariableText.h"

namespace harvlink::cli {

namespace {

constexpr std::uint16_t HighestIndex = 2048;

StatusInfo ShowVariables(QuorvanController& robot, Output& output, std::vector<VariableAddress> const& addresses) {
    return ShowRows(
        output, addresses,
        [&](VariableAddress address, Json& rows) {
            VariableValue value;
            StatusInfo status = ReadVariable(*robot.Variables, address, value);
            if (status.StatusCode == 0) {
                bool const isPosition = std::holds_alternative<PositionData>(value) && !output.json;
                rows.push_back({{"variable", VariableName(address)},
                                {"value", isPosition ? Json(FormatVariableValue(value)) : VariableValueJson(value)}});
            }
            return status;
        },
        VariableName);
}

void AddGetVariable(CLI::App& family, Session& session) {
    auto names = std::make_shared<std::vector<std::string>>();
    CLI::App* const verb = family.add_subcommand("get", "Show variables");
    verb->add_option("VARIABLE", *names, "Variables and ranges, such as B5 S4 P12 B0..B99")->required();
    SetExamples(*verb, {"var get B5 S4 P12", "var get B0..B99 --json"}, VariableHelp);
    verb->callback([names, &session] {
        std::vector<VariableAddress> addresses;
        for (std::string const& name : *names) {
            std::vector<VariableAddress> const range = ParseVariableRange(name);
            addresses.insert(addresses.end(), range.begin(), range.end());
        }
        session.OnConnection(Access::Observe, [addresses](QuorvanController& robot, Output& output) {
            return ShowVariables(robot, output, addresses);
        });
    });
}

std::vector<PendingWrite> WritesOf(QuorvanController& robot, std::vector<VariableAssignment> const& assignments) {
    std::vector<PendingWrite> writes;
    writes.reserve(assignments.size());
    for (VariableAssignment const& assignment : assignments) {
        writes.push_back(PendingVariable(*robot.Variables, assignment, AfterLoss::ReadBack));
    }
    return writes;
}

void AddSetVariable(CLI::App& family, Session& session) {
    auto texts = std::make_shared<std::vector<std::string>>();
    CLI::App* const verb = family.add_subcommand("set", "Write variables; nothing is written if one of them is wrong");
    verb->add_option("VARIABLE=VALUE", *texts, "Such as B5=12 S4=hello P1=pulse:0,0,0,0,0,0 B0..B9=0")->required();
    SetExamples(
        *verb, {"var set B5=12 S4=\"hello\"", "var set B0..B9=0", "var set P1=pulse:0,0,0,0,0,0"},
        std::string(
            "If an answer is lost, the variable is read back, and the command fails unless it holds the value:\n"
            "nothing is written twice.\n") +
            VariableHelp + "\n" + PositionHelp);
    verb->callback([texts, &session] {
        session.UseEncoding();
        std::vector<VariableAssignment> assignments;
        for (std::string const& text : *texts) {
            std::vector<VariableAssignment> const range = ParseVariableAssignment(text);
            assignments.insert(assignments.end(), range.begin(), range.end());
        }
        session.OnConnection(Access::Operate, [assignments](QuorvanController& robot, Output& output) {
            ShowReport(output, WriteEach(output, "Writing", WritesOf(robot, assignments), AfterFailure::Stop),
                       "variable");
            return StatusInfo{};
        });
    });
}

struct DumpArguments {
    std::vector<std::string> kinds;
    std::string path;
    bool force = false;
};

// A kind ends at the first index that the controller does not have.
StatusInfo ReadKind(VariablesInterface& variables, VariableKind kind, Progress& progress,
                    std::vector<VariableAssignment>& read) {
    for (std::uint16_t index = 0; index <= HighestIndex; ++index) {
        VariableAssignment variable{{kind, index}, {}};
        StatusInfo status =
            ReadRepeatedly(progress, fmt::format("Reading {}, {} read", VariableName(variable.address), read.size()),
                           [&] { return ReadVariable(variables, variable.address, variable.value); });
        if (status.StatusCode == static_cast<int>(ErrorStatusCodes::InvalidVariableIndex)) {
            break;
        }
        if (status.StatusCode != 0) {
            return status;
        }
        read.push_back(std::move(variable));
    }
    return {};
}

void WriteDump(Output& output, std::string const& path, bool force, std::vector<VariableAssignment> const& variables) {
    std::string const text = FormatVariableFile(variables);
    if (path.empty()) {
        output.ShowText(text);
        return;
    }
    WriteWholeFile(PathOf(path), text, force);
    output.Show(Json{{"written", variables.size()}, {"path", path}});
}

StatusInfo Dump(QuorvanController& robot, Output& output, std::vector<VariableKind> const& kinds,
                std::string const& path, bool force) {
    std::vector<VariableAssignment> variables;
    std::optional<Progress> progress(std::in_place, output, "Reading");
    for (VariableKind const kind : kinds) {
        StatusInfo status = ReadKind(*robot.Variables, kind, *progress, variables);
        if (status.StatusCode != 0) {
            return status;
        }
    }
    progress.reset();
    WriteDump(output, path, force, variables);
    return {};
}

std::vector<VariableKind> ParseKinds(std::vector<std::string> const& names) {
    std::vector<VariableKind> kinds;
    kinds.reserve(names.size());
    for (std::string const& name : names) {
        kinds.push_back(ParseVariableKind(name));
    }
    if (kinds.empty()) {
        for (auto const& named : VariableKindNames) {
            kinds.push_back(named.value);
        }
    }
    return kinds;
}

void AddDump(CLI::App& family, Session& session) {
    auto arguments = std::make_shared<DumpArguments>();
    CLI::App* const verb = family.add_subcommand("dump", "Write all variables to a CSV file that load reads");
    verb->add_option("--kind", arguments->kinds, "Kinds of variables (default: all)")
        ->type_name(Choices(VariableKindNames));
    verb->add_option("--out", arguments->path, "File to write (default: standard output)")->type_name("FILE");
    verb->add_flag("--force", arguments->force, "Overwrite an existing file");
    SetExamples(*verb, {"var dump --kind B --out vars.csv", "var dump > all.csv"});
    verb->callback([arguments, &session] {
        std::vector<VariableKind> const kinds = ParseKinds(arguments->kinds);
        if (!arguments->path.empty() && session.NamesSeveralCells()) {
            throw InputError("--out names one file; give one --cell");
        }
        if (!arguments->path.empty() && !arguments->force &&
            std::filesystem::is_regular_file(PathOf(arguments->path))) {
            throw InputError(fmt::format("{} exists; give --force to overwrite it", arguments->path));
        }
        session.OnConnection(Access::Observe, [kinds, path = arguments->path,
                                               force = arguments->force](QuorvanController& robot, Output& output) {
            return Dump(robot, output, kinds, path, force);
        });
    });
}

} // namespace

void AddVariableCommands(CLI::App& app, Session& session) {
    CLI::App* const family = app.add_subcommand("var", "Read and write variables");
    family->require_subcommand(1);
    SetExamples(*family, {"var get B5 P12", "var set B5=12", "var dump --out vars.csv"}, VariableHelp);
    AddGetVariable(*family, session);
    AddSetVariable(*family, session);
    AddDump(*family, session);
    AddVariableLoad(*family, session);
}

} // namespace harvlink::cli
