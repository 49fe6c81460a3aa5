#include <fmt/format.h>

#include "cli/output/Words.h"
#include "cli/snapshot/ParameterRange.h"
#include "cli/snapshot/TableReaders.h"
#include "harvlink/ControlGroupInterface.h"
#include "words/values/ParameterText.h"
#include "words/values/PositionText.h"

namespace harvlink::cli::snapshot {

namespace {

constexpr int NoSuchGroup = -59959039;

bool Is(StatusInfo const& status, ErrorStatusCodes code) {
    return status.StatusCode == static_cast<int>(code);
}

// Parameters number the groups: robots from 1, bases from 9, stations from 17.
int ParameterGroup(ControlGroupId group) {
    int const number = static_cast<int>(group);
    return group >= ControlGroupId::S1 ? number - 4 : group >= ControlGroupId::B1 ? number - 2 : number;
}

std::vector<ControlGroupId> AllGroups() {
    std::vector<ControlGroupId> groups;
    auto const add = [&](ControlGroupId first, ControlGroupId last) {
        for (int number = static_cast<int>(first); number <= static_cast<int>(last); ++number) {
            groups.push_back(static_cast<ControlGroupId>(number));
        }
    };
    add(ControlGroupId::R1, ControlGroupId::R8);
    add(ControlGroupId::B1, ControlGroupId::B8);
    add(ControlGroupId::S1, ControlGroupId::S24);
    return groups;
}

/// A family of the whole controller, or of one of its groups.
struct ParameterRun {
    ParameterRange range;
    int group = 0; ///< 0 for the whole controller
    std::string suffix; ///< of the names, such as "@R1"
};

std::vector<ParameterRun> ParameterRunsOf(std::vector<ParameterRange> const& ranges, Entries const& groups) {
    std::vector<ParameterRun> runs;
    for (ParameterRange const& range : ranges) {
        if (!BelongsToGroup(range.type)) {
            runs.push_back({range, 0, ""});
            continue;
        }
        for (Entry const& group : groups) {
            runs.push_back({range, ParameterGroup(ParseGroup(group.name)), "@" + group.name});
        }
    }
    return runs;
}

StatusInfo ReadOne(ControllerStateInterface& state, ParameterRun const& run, int number, int& value) {
    return run.group == 0 ? state.ReadSystemParam(run.range.type, number, value)
                          : state.ReadSystemParam(run.range.type, number, run.group, value);
}

// Ends at the first number or group that the controller does not have. Returns false if it has no parameters at all.
bool ReadParameterRun(Source& source, Snapshot& snapshot, ParameterRun const& run) {
    for (int number = run.range.first; number <= run.range.last; ++number) {
        int value = 0;
        std::string const name = fmt::format("{}{}{}", run.range.family, number, run.suffix);
        StatusInfo const status =
            source.Ask("parameter " + name, [&] { return ReadOne(*source.robot.Status, run, number, value); });
        if (Is(status, ErrorStatusCodes::InvalidSystemParameter) ||
            Is(status, ErrorStatusCodes::InvalidSystemParameterGroup)) {
            break;
        }
        if (status.StatusCode != 0) {
            bool const hasParameters = !Is(status, ErrorStatusCodes::UnsupportedOnThisController);
            if (hasParameters) {
                snapshot.missing.push_back({"parameters/" + name, status});
            }
            return hasParameters;
        }
        snapshot.tables["parameters"].push_back({name, fmt::format("{}", value)});
    }
    return true;
}

std::vector<ParameterRange> SelectedRanges(std::vector<std::string> const& texts) {
    std::vector<ParameterRange> ranges;
    ranges.reserve(texts.size());
    for (std::string const& text : texts) {
        ranges.push_back(ParseParameterRange(text));
    }
    return ranges.empty() ? AllParameterRanges() : ranges;
}

// No operation lists the groups, so each possible group is asked for.
Entries FindGroups(Source& source, Snapshot& snapshot) {
    Entries groups;
    for (ControlGroupId const group : AllGroups()) {
        std::array<char, 8> axes{};
        StatusInfo const status = source.Ask(
            "group " + GroupName(group), [&] { return source.robot.ControlGroup->ReadAxisConfiguration(group, axes); });
        if (status.StatusCode == 0) {
            groups.push_back({GroupName(group), TrimField(std::string_view(axes.data(), axes.size()))});
        } else if (status.StatusCode != NoSuchGroup) {
            snapshot.missing.push_back({"groups/" + GroupName(group), status});
        }
        if (source.IsGone()) {
            break;
        }
    }
    return groups;
}

} // namespace

void ReadGroups(Source& source, Snapshot& snapshot) {
    snapshot.tables["groups"] = FindGroups(source, snapshot);
}

void ReadParameters(Source& source, Snapshot& snapshot) {
    auto const known = snapshot.tables.find("groups");
    Entries const groups = known == snapshot.tables.end() ? FindGroups(source, snapshot) : known->second;
    snapshot.tables["parameters"] = {};
    for (ParameterRun const& run : ParameterRunsOf(SelectedRanges(snapshot.selection.parameters), groups)) {
        if (source.IsGone()) {
            return;
        }
        if (!ReadParameterRun(source, snapshot, run)) {
            snapshot.tables.erase("parameters");
            return;
        }
    }
}

} // namespace harvlink::cli::snapshot
