#include "cli/program/FleetCells.h"

namespace harvlink::cli {

namespace {

FleetCell CellOf(std::string const& name, Settings const& settings) {
    FleetCell cell{.name = name, .options = {}, .generation = settings.generation, .encoding = settings.encoding};
    cell.options.address = settings.host;
    cell.options.timeout = settings.timeoutMilliseconds;
    cell.options.retries = settings.retries;
    return cell;
}

} // namespace

std::vector<FleetCell> FleetCells(Session& session) {
    std::vector<FleetCell> cells;
    for (std::string const& cell : session.NamedCells()) {
        cells.push_back(CellOf(cell, session.SettingsOf(cell)));
    }
    if (cells.empty()) {
        session.CheckHost();
        cells.push_back(CellOf(session.settings().host, session.settings()));
    }
    return cells;
}

} // namespace harvlink::cli
