#include "words/settings/SettingsFile.h"

#include <algorithm>

#include <arpa/inet.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <toml++/toml.h>

#include "words/text/Csv.h"
#include "words/text/InputError.h"
#include "words/text/Text.h"
#include "words/values/Generations.h"

namespace harvlink::words {

namespace {

constexpr unsigned LongestTimeout = 600'000;
constexpr unsigned MostRetries = 1'000;

void CheckHost(std::string const& text) {
    in_addr address{};
    if (inet_pton(AF_INET, text.c_str(), &address) != 1) {
        throw InputError(fmt::format("'{}' is not an IPv4 address such as 192.168.255.1", text));
    }
}

void CheckNumber(std::string const& text, char const* what, unsigned least, unsigned most) {
    auto const number = ParseNumber<unsigned>(text, what);
    if (number < least || number > most) {
        throw InputError(fmt::format("{} {} is out of range, from {} to {}", what, text, least, most));
    }
}

void CheckTimeout(std::string const& text) {
    CheckNumber(text, "number of milliseconds", 1, LongestTimeout);
}

void CheckRetries(std::string const& text) {
    CheckNumber(text, "number of retries", 0, MostRetries);
}

void CheckGeneration(std::string const& text) {
    if (std::find(Generations.begin(), Generations.end(), UpperCase(text)) == Generations.end()) {
        throw InputError(fmt::format("'{}' is not a generation; there are: {}", text, fmt::join(Generations, ", ")));
    }
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

/// The parser takes an address without quotes for a wrong number, but what is wrong is that the quotes are missing.
Setting const* FindUnquoted(std::string_view line) {
    std::size_t const equals = std::min(line.find('='), line.size());
    std::string_view const name = TrimBlanks(line.substr(0, equals));
    std::string_view const value = TrimBlanks(line.substr(std::min(equals + 1, line.size())));
    auto const& all = AllSettings();
    auto const* const setting =
        std::find_if(all.begin(), all.end(), [&](Setting const& each) { return name == each.name && !each.isNumber; });
    bool const isQuoted = value.starts_with('"') || value.starts_with('\'');
    return setting == all.end() || value.empty() || isQuoted ? nullptr : setting;
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
    for (Setting const& setting : AllSettings()) {
        names += (names.empty() ? "" : ", ") + std::string(setting.name);
    }
    throw InputError(fmt::format("{}: there is no setting '{}'; there are: {}", source, key, names));
}

} // namespace

std::array<Setting, SettingCount> const& AllSettings() {
    static constexpr std::array<Setting, SettingCount> All{{
        {"host", false, "host = \"192.168.255.1\"", CheckHost},
        {"timeout", true, "", CheckTimeout},
        {"retries", true, "", CheckRetries},
        {"generation", false, "generation = \"YA\"", CheckGeneration},
    }};
    return All;
}

SettingValues ReadSettingsFile(std::string const& path) {
    SettingValues values;
    toml::table const table = ParseFile(path);
    for (auto const& [key, node] : table) {
        std::string const source = fmt::format("{}:{}", path, key.source().begin.line);
        std::string_view const name = key.str();
        auto const& all = AllSettings();
        auto const* const setting =
            std::find_if(all.begin(), all.end(), [&](Setting const& each) { return name == each.name; });
        if (setting == all.end()) {
            FailUnknown(source, name);
        }
        values.at(static_cast<std::size_t>(setting - all.begin())) =
            SettingValue{TextOf(node, *setting, source), source};
    }
    return values;
}

} // namespace harvlink::words
