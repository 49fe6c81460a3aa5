#include <optional>

#include "cli/output/Words.h"
#include "cli/program/VariableAccess.h"
#include "cli/snapshot/TableReaders.h"
#include "words/values/VariableText.h"

namespace harvlink::cli::snapshot {

namespace {

constexpr std::uint16_t HighestVariable = 2048;

/// Consecutive variables of one kind.
struct VariableRun {
    VariableKind kind{};
    std::uint16_t first = 0;
    std::uint16_t last = HighestVariable;
};

std::vector<VariableRun> VariableRunsOf(std::vector<std::string> const& ranges) {
    std::vector<VariableRun> runs;
    for (std::string const& range : ranges) {
        std::vector<VariableAddress> const addresses = ParseVariableRange(range);
        runs.push_back({addresses.front().kind, addresses.front().index, addresses.back().index});
    }
    if (ranges.empty()) {
        for (auto const& named : VariableKindNames) {
            runs.push_back({.kind = named.value});
        }
    }
    return runs;
}

// Ends at the first number that the controller does not have.
void ReadVariableRun(Source& source, Snapshot& snapshot, VariableRun const& run) {
    for (unsigned index = run.first; index <= run.last; ++index) {
        VariableAddress const address{run.kind, static_cast<std::uint16_t>(index)};
        VariableValue value;
        StatusInfo const status = source.Ask("variable " + VariableName(address),
                                             [&] { return ReadVariable(*source.robot.Variables, address, value); });
        if (status.StatusCode == static_cast<int>(ErrorStatusCodes::InvalidVariableIndex)) {
            return;
        }
        if (status.StatusCode != 0) {
            snapshot.missing.push_back({"variables/" + VariableName(address), status});
            return;
        }
        snapshot.tables["variables"].push_back({VariableName(address), FormatVariableValue(value)});
    }
}

} // namespace

void ReadVariables(Source& source, Snapshot& snapshot) {
    snapshot.tables["variables"] = {};
    for (VariableRun const& run : VariableRunsOf(snapshot.selection.variables)) {
        if (!source.IsGone()) {
            ReadVariableRun(source, snapshot, run);
        }
    }
}

} // namespace harvlink::cli::snapshot
