#include "cli/snapshot/Difference.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <set>

#include <fmt/format.h>

namespace harvlink::cli::snapshot {

namespace {

using Index = std::map<std::string_view, std::string_view>;

Index IndexOf(Entries const& table) {
    Index index;
    for (Entry const& entry : table) {
        index[entry.name] = entry.value;
    }
    return index;
}

// The names of both, in the order of the newer. A name that only the older has stands after the name it followed there.
std::vector<std::string_view> NamesOf(Entries const& before, Entries const& after) {
    std::vector<std::string_view> names;
    std::set<std::string_view> known;
    Index const latter = IndexOf(after);
    auto next = after.begin();
    auto const add = [&](std::string_view name) {
        if (known.insert(name).second) {
            names.push_back(name);
        }
    };
    for (Entry const& entry : before) {
        while (latter.contains(entry.name) && next != after.end() && !known.contains(entry.name)) {
            add(next++->name);
        }
        add(entry.name);
    }
    std::for_each(next, after.end(), [&](Entry const& entry) { add(entry.name); });
    return names;
}

std::optional<std::string> Find(Index const& index, std::string_view name) {
    auto const found = index.find(name);
    return found == index.end() ? std::nullopt : std::optional<std::string>(found->second);
}

// A group of eight signals that both have becomes one change for each signal that differs.
void AddSignals(ChangedEntry const& group, std::vector<ChangedEntry>& changes) {
    unsigned address = 0;
    std::from_chars(group.name.data(), group.name.data() + group.name.size(), address);
    std::string const& before = *group.before;
    std::string const& after = *group.after;
    for (std::size_t i = before.size(); i-- > 0;) {
        if (before[i] != after[i]) {
            auto const state = [](char bit) { return bit == '1' ? "on" : "off"; };
            std::string const name = fmt::format("{}", address + before.size() - 1 - i);
            changes.push_back({group.section, name, state(before[i]), state(after[i]), {}});
        }
    }
}

void CompareTables(std::string_view section, Entries const& before, Entries const& after, bool onlyCommon,
                   std::vector<ChangedEntry>& changes) {
    Index const former = IndexOf(before);
    Index const latter = IndexOf(after);
    for (std::string_view const name : NamesOf(before, after)) {
        ChangedEntry change{std::string(section), std::string(name), Find(former, name), Find(latter, name), {}};
        bool const isCommon = change.before && change.after;
        if (change.before == change.after || (onlyCommon && !isCommon)) {
            continue;
        }
        if (section == "signals" && isCommon && change.before->size() == change.after->size()) {
            AddSignals(change, changes);
        } else {
            changes.push_back(std::move(change));
        }
    }
}

void CompareFiles(Snapshot const& before, Snapshot const& after, bool onlyCommon, std::vector<ChangedEntry>& changes) {
    std::set<std::string_view> names;
    for (Snapshot const* const snapshot : {&before, &after}) {
        for (auto const& [name, contents] : snapshot->files) {
            names.insert(name);
        }
    }
    for (std::string_view const name : names) {
        auto const former = before.files.find(name);
        auto const latter = after.files.find(name);
        ChangedEntry change{
            .section = std::string(FilesSection), .name = std::string(name), .before = {}, .after = {}, .lines = {}};
        bool const isCommon = former != before.files.end() && latter != after.files.end();
        if (isCommon ? former->second == latter->second : onlyCommon) {
            continue;
        }
        if (former != before.files.end()) {
            change.before = fmt::format("{} bytes", former->second.size());
        }
        if (latter != after.files.end()) {
            change.after = fmt::format("{} bytes", latter->second.size());
        }
        if (isCommon) {
            change.lines = LineDifference(former->second, latter->second);
        }
        changes.push_back(std::move(change));
    }
}

/// Compares a section that both have; notes a section that only one has.
void CompareSection(std::string_view section, Snapshot const& before, Snapshot const& after, Difference& difference,
                    std::function<void(bool onlyCommon)> const& compare) {
    bool const isComplete = before.IsComplete(section) && after.IsComplete(section);
    bool const isFormer = before.HasSection(section);
    bool const isLatter = after.HasSection(section);
    if (!isComplete) {
        difference.incomplete.emplace_back(section);
    } else if (isFormer != isLatter) {
        difference.notTaken.emplace_back(section);
    }
    if (isFormer && isLatter) {
        compare(!isComplete);
    }
}

} // namespace

Difference Compare(Snapshot const& before, Snapshot const& after) {
    Difference difference;
    std::vector<ChangedEntry>& changes = difference.changes;
    CompareSection(ControllerSection, before, after, difference, [&](bool onlyCommon) {
        CompareTables(ControllerSection, before.controller, after.controller, onlyCommon, changes);
    });
    for (TableKind const& kind : TableKinds) {
        CompareSection(kind.section, before, after, difference, [&](bool onlyCommon) {
            CompareTables(kind.section, before.tables.find(kind.section)->second,
                          after.tables.find(kind.section)->second, onlyCommon, changes);
        });
    }
    CompareSection(FilesSection, before, after, difference,
                   [&](bool onlyCommon) { CompareFiles(before, after, onlyCommon, changes); });
    return difference;
}

} // namespace harvlink::cli::snapshot
