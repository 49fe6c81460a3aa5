#pragma once

#include "cli/output/Output.h"
#include "harvlink/StatusInfo.h"

namespace harvlink::cli {

/// Collects rows by `read(item, rows)` and shows them. The first failure ends the reading and is returned; the rows before
/// it are shown all the same.
template <typename Items, typename Read>
StatusInfo ShowRows(Output& output, Items const& items, Read const& read) {
    Json rows = Json::array();
    StatusInfo status;
    for (auto const& item : items) {
        status = read(item, rows);
        if (status.StatusCode != 0) {
            break;
        }
    }
    if (status.StatusCode == 0 || !rows.empty()) {
        output.Show(rows);
    }
    return status;
}

} // namespace harvlink::cli
