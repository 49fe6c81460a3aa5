#include "cli/program/FleetCells.h"

#include <fmt/format.h>

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

std::optional<StatusInfo> WrongGeneration(FleetCell const& cell, FleetValue const& value) {
    auto const* const software = std::get_if<SystemInfoData>(&value);
    if (cell.generation.empty() || software == nullptr || software->softwareVersion.starts_with(cell.generation)) {
        return std::nullopt;
    }
    return StatusInfo{static_cast<std::int32_t>(ErrorStatusCodes::UnsupportedOnThisController),
                      fmt::format("not of generation {}", cell.generation)};
}

} // namespace harvlink::cli
