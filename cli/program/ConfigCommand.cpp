#include "cli/program/ConfigCommand.h"

#include <filesystem>
#include <optional>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/program/CommandLine.h"
#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "words/text/Path.h"

namespace harvlink::cli {

namespace {

Json CellRows(std::vector<Cell> const& cells) {
    Json rows = Json::array();
    for (Cell const& cell : cells) {
        Json row{{"cell", cell.name}};
        for (std::size_t i = 0; i < SettingCount; ++i) {
            std::optional<SettingValue> const& value = cell.values.at(i);
            row[std::string(AllSettings().at(i).name)] = value ? Json(value->text) : Json();
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

int ShowSettings(Settings const& settings, std::vector<Cell> const& cells, Output& output) {
    Json rows = Json::array();
    for (Settings::Entry const& setting : settings.entries) {
        Json const value = setting.value.empty() ? Json() : Json(setting.value);
        rows.push_back({{"setting", setting.name}, {"value", value}, {"source", setting.source}});
    }
    std::error_code error;
    output.Show(Json{{"file", settings.file},
                     {"file_exists", std::filesystem::exists(PathOf(settings.file), error)},
                     {"settings", rows},
                     {"cells", CellRows(cells)}});
    return ExitStatus::Success;
}

} // namespace

void AddConfigCommand(CLI::App& app, Session& session) {
    CLI::App* const verb = app.add_subcommand("config", "Show the settings that apply and where each comes from");
    SetExamples(*verb, {"config", "config --cell press1", "--host 192.168.255.1 config --json"},
                "An option comes before the cell that --cell names, this before the environment, the environment\n"
                "before the configuration file, and the file before the built-in value.\n"
                "The file has lines such as:\n"
                "  host = \"192.168.255.1\"\n"
                "  timeout = 300\n"
                "  retries = 5\n"
                "  generation = \"YA\"\n"
                "  encoding = \"cp932\"\n"
                "It gives controllers names in sections, which --cell takes; the last settings of a section are\n"
                "optional:\n"
                "  [cell.press1]\n"
                "  host = \"192.168.255.11\"\n"
                "  timeout = 500");
    verb->callback([&session] {
        session.Locally(
            [&session](Output& output) { return ShowSettings(session.settings(), session.Cells(), output); });
    });
}

} // namespace harvlink::cli
