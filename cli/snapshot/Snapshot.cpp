#include "cli/snapshot/Snapshot.h"

#include <algorithm>

namespace harvlink::cli::snapshot {

bool Selection::Has(std::string_view section) const {
    return sections.empty() || std::find(sections.begin(), sections.end(), section) != sections.end();
}

bool Snapshot::HasSection(std::string_view section) const {
    return section == FilesSection ? selection.Has(section)
                                   : section == ControllerSection || tables.find(section) != tables.end();
}

bool Snapshot::IsComplete(std::string_view section) const {
    return std::none_of(missing.begin(), missing.end(), [&](Missing const& part) {
        return std::string_view(part.what).substr(0, part.what.find('/')) == section;
    });
}

bool Snapshot::IsEmpty() const {
    return files.empty() &&
           std::all_of(tables.begin(), tables.end(), [](auto const& named) { return named.second.empty(); });
}

} // namespace harvlink::cli::snapshot
