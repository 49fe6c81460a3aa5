#include "cli/program/Settings.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include <CLI/CLI.hpp>
#include <arpa/inet.h>
#include <fmt/format.h>
#include <toml++/toml.h>

#include "cli/output/Words.h"
#include "words/text/Csv.h"
#include "words/text/InputError.h"
#include "words/text/Text.h"
#include "words/values/Generations.h"

namespace harvlink::cli {

namespace {

constexpr unsigned LongestTimeout = 600'000;
constexpr unsigned MostRetries = 1'000;
constexpr char const* FileVariable = "HARVLINK_CONFIG";

void CheckHost(std::string const& text) {
    in_addr address{};
    if (inet_pton(AF_INET, text.c_str(), &address) != 1) {
        throw InputError(fmt::format("'{}' is no IPv4 address such as 192.168.255.1", text));
    }
}

void CheckNumber(std::string const& text, char const* what, unsigned most) {
    if (ParseNumber<unsigned>(text, what) > most) {
        throw InputError(fmt::format("{} {} is out of range, the most is {}", what, text, most));
    }
}

void CheckTimeout(std::string const& text) {
    CheckNumber(text, "number of milliseconds", LongestTimeout);
}

void CheckRetries(std::string const& text) {
    CheckNumber(text, "number of retries", MostRetries);
}

void CheckGeneration(std::string const& text) {
    if (std::find(Generations.begin(), Generations.end(), UpperCase(text)) == Generations.end()) {
        throw InputError(fmt::format("'{}' is no generation; there are: {}", text, fmt::join(Generations, ", ")));
    }
}

/// In a file a number is written as one, a text in quotes.
struct Setting {
    char const* name; ///< of the option, without its hyphens, and of the key in the file
    char const* variable;
    char const* builtIn;
    bool isNumber;
    char const* example; ///< of a text as the file has it
    char const* type;
    char const* help;
    void (*check)(std::string const& text); ///< throws InputError
};

constexpr std::array<Setting, Settings::Count> All{{
    {"host", "HARVLINK_HOST", "", false, "host = \"192.168.255.1\"", "ADDRESS", "IPv4 address of the controller",
     CheckHost},
    {"timeout", "HARVLINK_TIMEOUT", "500", true, "", "MS", "Milliseconds for which an exchange listens for its answer",
     CheckTimeout},
    {"retries", "HARVLINK_RETRIES", "3", true, "", "N", "How many further such periods it listens", CheckRetries},
    {"generation", "HARVLINK_GENERATION", "", false, "generation = \"YA\"", "DS|DN|FS|YA|YB|YN",
     "Refuse to work with a controller of another generation", CheckGeneration},
}};

std::string ProblemOf(Setting const& setting, std::string const& text) {
    try {
        setting.check(text);
    } catch (InputError const& error) {
        return error.what();
    }
    return {};
}

std::string Variable(char const* name) {
    char const* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::string TextOf(toml::node const& node, Setting const& setting, std::string const& source) {
    if (setting.isNumber && node.is_integer()) {
        return std::to_string(node.as_integer()->get());
    }
    if (!setting.isNumber && node.is_string()) {
        return node.as_string()->get();
    }
    throw InputError(fmt::format("{}: {} must be {}", source, setting.name,
                                 setting.isNumber ? "a whole number, without quotes"
                                                  : fmt::format("a text in quotes, such as {}", setting.example)));
}

/// The parser takes an address without quotes for a number and says so; what is missing are the quotes.
Setting const* FindUnquoted(std::string_view line) {
    std::size_t const equals = std::min(line.find('='), line.size());
    std::string_view const name = TrimBlanks(line.substr(0, equals));
    std::string_view const value = TrimBlanks(line.substr(std::min(equals + 1, line.size())));
    auto const* const setting =
        std::find_if(All.begin(), All.end(), [&](Setting const& each) { return name == each.name && !each.isNumber; });
    bool const isQuoted = value.starts_with('"') || value.starts_with('\'');
    return setting == All.end() || value.empty() || isQuoted ? nullptr : setting;
}

[[noreturn]] void FailToParse(std::string const& path, std::string_view text, toml::parse_error const& error) {
    std::size_t const line = error.source().begin.line;
    std::vector<std::string_view> const lines = Split(text, '\n');
    Setting const* const unquoted = line >= 1 && line <= lines.size() ? FindUnquoted(lines[line - 1]) : nullptr;
    throw InputError(unquoted != nullptr ? fmt::format("{}:{}: {} must be a text in quotes, such as {}", path, line,
                                                       unquoted->name, unquoted->example)
                                         : fmt::format("{}:{}: {}", path, line, error.description()));
}

toml::table ParseFile(std::string const& path) {
    std::string const text = ReadTextFile(path);
    try {
        return toml::parse(text);
    } catch (toml::parse_error const& error) {
        FailToParse(path, text, error);
    }
}

[[noreturn]] void FailUnknown(std::string const& source, std::string_view key) {
    std::string names;
    for (Setting const& setting : All) {
        names += (names.empty() ? "" : ", ") + std::string(setting.name);
    }
    throw InputError(fmt::format("{}: there is no setting '{}'; there are: {}", source, key, names));
}

} // namespace

void Settings::AddOptions(CLI::App& app) {
    for (std::size_t i = 0; i < Count; ++i) {
        Setting const& setting = All.at(i);
        options_.at(i) = app.add_option(fmt::format("--{}", setting.name), given_.at(i),
                                        fmt::format("{} [{}]", setting.help, setting.variable))
                             ->check([&setting](std::string const& text) { return ProblemOf(setting, text); })
                             ->type_name(setting.type)
                             ->default_str(setting.builtIn);
    }
    app.add_option("--config", namedFile_,
                   fmt::format("Configuration file to read instead of the usual one [{}]", FileVariable))
        ->type_name("FILE");
}

std::string Settings::File() const {
    if (!namedFile_.empty()) {
        return namedFile_;
    }
    if (std::string const named = Variable(FileVariable); !named.empty()) {
        return named;
    }
    // A relative folder is invalid there and to be left out.
    std::filesystem::path folder = Variable("XDG_CONFIG_HOME");
    if (!folder.is_absolute()) {
        std::string const home = Variable("HOME");
        folder = home.empty() ? std::filesystem::path() : std::filesystem::path(home) / ".config";
    }
    return folder.empty() ? "" : folder / "harvlink" / "config.toml";
}

Settings::FileValues Settings::ReadFile() const {
    FileValues values;
    std::string const path = File();
    bool const isNamed = !namedFile_.empty() || !Variable(FileVariable).empty();
    std::error_code error;
    if (path.empty() || (!isNamed && !std::filesystem::exists(path, error))) {
        return values;
    }
    toml::table const table = ParseFile(path);
    for (auto const& [key, node] : table) {
        std::string const source = fmt::format("{}:{}", path, key.source().begin.line);
        std::string_view const name = key.str();
        auto const* const setting =
            std::find_if(All.begin(), All.end(), [&](Setting const& each) { return name == each.name; });
        if (setting == All.end()) {
            FailUnknown(source, name);
        }
        values.at(static_cast<std::size_t>(setting - All.begin())) = FileValue{TextOf(node, *setting, source), source};
    }
    return values;
}

std::vector<Settings::Effective> Settings::Resolve() const {
    FileValues const file = ReadFile();
    std::vector<Effective> settings;
    for (std::size_t i = 0; i < Count; ++i) {
        Setting const& setting = All.at(i);
        std::string const variable = Variable(setting.variable);
        Effective effective{setting.name, setting.builtIn, "built-in"};
        if (options_.at(i)->count() > 0) {
            effective = {setting.name, given_.at(i), fmt::format("--{}", setting.name)};
        } else if (!variable.empty()) {
            effective = {setting.name, variable, setting.variable};
        } else if (file.at(i)) {
            effective = {setting.name, file.at(i)->text, file.at(i)->source};
        }
        std::string const problem = effective.source == "built-in" ? "" : ProblemOf(setting, effective.value);
        if (!problem.empty()) {
            throw InputError(fmt::format("{}: {}", effective.source, problem));
        }
        settings.push_back(std::move(effective));
    }
    return settings;
}

Settings::Connection Settings::ForConnection() const {
    std::vector<Effective> const settings = Resolve();
    return {settings[0].value, ParseNumber<unsigned>(settings[1].value, "time-out"),
            ParseNumber<unsigned>(settings[2].value, "number of retries"), UpperCase(settings[3].value)};
}

} // namespace harvlink::cli
