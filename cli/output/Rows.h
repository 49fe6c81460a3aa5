#pragma once

#include <string>

#include "cli/output/Output.h"
#include "harvlink/StatusInfo.h"

namespace harvlink::cli {

/// Collects rows by `read(item, rows)` and shows them. The first failure ends the reading and is shown with the name of its item;
/// the rows before it are shown all the same.
template <typename Items, typename Read, typename Name>
StatusInfo ShowRows(Output& output, Items const& items, Read const& read, Name const& name) {
    Json rows = Json::array();
    bool hasFailed = false;
    for (auto const& item : items) {
        StatusInfo const status = read(item, rows);
        if (status.StatusCode != 0) {
            output.Failure(status, name(item));
            hasFailed = true;
            break;
        }
    }
    if (!hasFailed || !rows.empty()) {
        output.Show(rows);
    }
    return {};
}

/// The same for items that need no name.
template <typename Items, typename Read>
StatusInfo ShowRows(Output& output, Items const& items, Read const& read) {
    return ShowRows(output, items, read, [](auto const&) { return std::string(); });
}

} // namespace harvlink::cli
