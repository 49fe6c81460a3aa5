#include "cli/program/ConfigCommand.h"

#include <filesystem>

#include <CLI/CLI.hpp>

#include "cli/program/CommandLine.h"
#include "cli/program/Help.h"
#include "cli/program/Session.h"

namespace harvlink::cli {

namespace {

int ShowSettings(Settings const& settings, Output& output) {
    Json rows = Json::array();
    for (Settings::Entry const& setting : settings.entries) {
        Json const value = setting.value.empty() ? Json() : Json(setting.value);
        rows.push_back({{"setting", setting.name}, {"value", value}, {"source", setting.source}});
    }
    std::error_code error;
    output.Show(Json{
        {"file", settings.file}, {"file_exists", std::filesystem::exists(settings.file, error)}, {"settings", rows}});
    return ExitStatus::Success;
}

} // namespace

void AddConfigCommand(CLI::App& app, Session& session) {
    CLI::App* const verb = app.add_subcommand("config", "Show the settings that apply and where each comes from");
    SetExamples(*verb, {"config", "--host 192.168.255.1 config --json"},
                "An option comes before the environment, the environment before the configuration file, and the\n"
                "file before the built-in value.\n"
                "The file has lines such as:\n"
                "  host = \"192.168.255.1\"\n"
                "  timeout = 300\n"
                "  retries = 5\n"
                "  generation = \"YA\"");
    verb->callback([&session] {
        session.Locally([&session](Output& output) { return ShowSettings(session.settings(), output); });
    });
}

} // namespace harvlink::cli
