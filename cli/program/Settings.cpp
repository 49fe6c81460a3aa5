#include "cli/program/Settings.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/program/Environment.h"
#include "words/text/Encoding.h"
#include "words/text/InputError.h"
#include "words/text/Path.h"
#include "words/text/Text.h"
#include "words/values/Generations.h"

namespace harvlink::cli {

namespace {

constexpr char const* FileVariable = "HARVLINK_CONFIG";
constexpr char const* BuiltIn = "built-in";

struct SettingOption {
    char const* variable;
    char const* builtIn;
    char const* type; ///< empty: the names of the generations or encodings
    char const* help;
};

/// In the order of AllSettings.
constexpr std::array<SettingOption, SettingCount> Options{{
    {"HARVLINK_HOST", "", "ADDRESS", "IPv4 address or name of the controller"},
    {"HARVLINK_TIMEOUT", "500", "MS", "Milliseconds for which an exchange waits for its answer"},
    {"HARVLINK_RETRIES", "3", "N", "How many more times it waits as long"},
    {"HARVLINK_GENERATION", "", "", "Refuse to work with a controller of another generation"},
    {"HARVLINK_ENCODING", "utf-8", "", "Encoding of the controller's texts"},
}};

std::string TypeOf(std::string_view name, SettingOption const& option) {
    return *option.type != '\0' ? option.type
           : name == "encoding" ? fmt::format("{}", fmt::join(TextEncoding::Names(), "|"))
                                : fmt::format("{}", fmt::join(Generations, "|"));
}

} // namespace

std::string ProblemOf(Setting const& setting, std::string const& text) {
    try {
        setting.check(text);
    } catch (InputError const& error) {
        return error.what();
    }
    return {};
}

void SettingsOptions::Add(CLI::App& app) {
    for (std::size_t i = 0; i < SettingCount; ++i) {
        Setting const& setting = AllSettings().at(i);
        SettingOption const& option = Options.at(i);
        options_.at(i) = app.add_option(fmt::format("--{}", setting.name), given_.at(i),
                                        fmt::format("{} [{}]", option.help, option.variable))
                             ->check([&setting](std::string const& text) { return ProblemOf(setting, text); })
                             ->type_name(TypeOf(setting.name, option))
                             ->default_str(option.builtIn);
    }
    app.add_option("--config", namedFile_,
                   fmt::format("Configuration file to read instead of the usual one [{}]", FileVariable))
        ->type_name("FILE");
    app.add_option("--cell", cells_, "The controller of this name in the configuration file; repeatable")
        ->type_name("CELL")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_flag("--all", all_, "All cells of the configuration file at once, for what only reads");
}

std::vector<std::string> SettingsOptions::NamedCells() const {
    if (all_ && !cells_.empty()) {
        throw InputError("give --all or --cell, not both");
    }
    if (NameSeveralCells() && options_.front()->count() > 0) {
        throw InputError("--host names one controller; give it without --all and with one --cell at most");
    }
    std::vector<std::string> names = cells_;
    for (Cell const& cell : all_ ? Cells() : std::vector<Cell>()) {
        names.push_back(cell.name);
    }
    if (all_ && names.empty()) {
        throw InputError("--all: the configuration file names no cells; see harvlink config --help");
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (std::ranges::count(names, names[i]) > 1) {
            throw InputError(fmt::format("--cell {} is given twice", names[i]));
        }
    }
    return names;
}

std::string SettingsOptions::File() const {
    if (!namedFile_.empty()) {
        return namedFile_;
    }
    if (std::string named = EnvironmentVariable(FileVariable); !named.empty()) {
        return named;
    }
    // By the convention for this variable, a relative folder in it is invalid and ignored.
    std::filesystem::path folder = PathOf(EnvironmentVariable("XDG_CONFIG_HOME"));
    if (!folder.is_absolute()) {
#if defined(_WIN32)
        folder = PathOf(EnvironmentVariable("APPDATA"));
#else
        std::string const home = EnvironmentVariable("HOME");
        folder = home.empty() ? std::filesystem::path() : std::filesystem::path(home) / ".config";
#endif
    }
    return folder.empty() ? "" : TextOf(folder / "harvlink" / "config.toml");
}

// A file that the user named must exist, the usual one need not.
SettingsContents const& SettingsOptions::FromFile() const {
    if (contents_) {
        return *contents_;
    }
    std::string const path = File();
    bool const isNamed = !namedFile_.empty() || !EnvironmentVariable(FileVariable).empty();
    std::error_code error;
    bool const isRead = !path.empty() && (isNamed || std::filesystem::exists(PathOf(path), error));
    return contents_.emplace(isRead ? ReadSettingsFile(path) : SettingsContents{});
}

Settings::Entry SettingsOptions::ResolveEntry(std::size_t index, SettingsContents const& file, Cell const* cell) const {
    Setting const& setting = AllSettings().at(index);
    SettingOption const& option = Options.at(index);
    std::string const name(setting.name);
    std::string const variable = EnvironmentVariable(option.variable);
    Settings::Entry entry{name, option.builtIn, BuiltIn};
    if (options_.at(index)->count() > 0) {
        entry = {name, given_.at(index), "--" + name};
    } else if (cell != nullptr && cell->values.at(index)) {
        entry = {name, cell->values.at(index)->text, cell->values.at(index)->source};
    } else if (!variable.empty()) {
        entry = {name, variable, option.variable};
    } else if (file.values.at(index)) {
        entry = {name, file.values.at(index)->text, file.values.at(index)->source};
    }
    std::string const problem = entry.source == BuiltIn ? "" : ProblemOf(setting, entry.value);
    if (!problem.empty()) {
        throw InputError(fmt::format("{}: {}", entry.source, problem));
    }
    return entry;
}

Settings SettingsOptions::Resolve(std::string const& cell) const {
    Settings settings{.cell = cell, .file = File()};
    SettingsContents const& file = FromFile();
    std::error_code error;
    std::string const readFile = std::filesystem::exists(settings.file, error) ? settings.file : std::string();
    Cell const* const found = cell.empty() ? nullptr : &FindCell(file.cells, cell, readFile);
    for (std::size_t i = 0; i < SettingCount; ++i) {
        settings.entries.at(i) = ResolveEntry(i, file, found);
    }
    auto const& [host, timeout, retries, generation, encoding] = settings.entries;
    settings.host = host.value;
    settings.timeoutMilliseconds = ParseNumber<unsigned>(timeout.value, "time-out");
    settings.retries = ParseNumber<unsigned>(retries.value, "number of retries");
    settings.generation = UpperCase(generation.value);
    settings.encoding = encoding.value;
    return settings;
}

} // namespace harvlink::cli
