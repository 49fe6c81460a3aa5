#include "words/settings/SettingsFile.h"

#include <algorithm>
#include <cctype>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <toml++/toml.h>

#if defined(_WIN32)
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#endif

#include "words/text/Csv.h"
#include "words/text/Encoding.h"
#include "words/text/InputError.h"
#include "words/text/Nearest.h"
#include "words/text/Text.h"
#include "words/values/Generations.h"

namespace harvlink::words {

namespace {

constexpr std::string_view CellsKey = "cell";
constexpr unsigned LongestTimeout = 600'000;
constexpr unsigned MostRetries = 1'000;
constexpr std::size_t LongestName = 253; ///< of a host
constexpr std::size_t LongestLabel = 63; ///< between the dots of its name

/// Whether a text that is not an IPv4 address could be the name of a host. What consists of digits and dots is a mistyped
/// address: no top-level domain is a number.
bool IsHostName(std::string_view text) {
    std::vector<std::string_view> labels = Split(text, '.');
    if (labels.size() > 1 && labels.back().empty()) {
        labels.pop_back(); // the dot of a name from the root
    }
    bool const isNumber = labels.back().find_first_not_of("0123456789") == std::string_view::npos;
    return !isNumber && text.size() <= LongestName && std::all_of(labels.begin(), labels.end(), [](auto label) {
        bool const isWord = std::all_of(label.begin(), label.end(), [](unsigned char letter) {
            return letter < 0x80 && (std::isalnum(letter) != 0 || letter == '-' || letter == '_');
        });
        return isWord && !label.empty() && label.size() <= LongestLabel && label.front() != '-' && label.back() != '-';
    });
}

void CheckHost(std::string const& text) {
    in_addr address{};
    if (inet_pton(AF_INET, text.c_str(), &address) != 1 && !IsHostName(text)) {
        throw InputError(
            fmt::format("'{}' is not an IPv4 address such as 192.168.255.1, nor the name of a host", text));
    }
}

void CheckEncoding(std::string const& text) {
    TextEncoding const known(text);
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
    throw InputError(
        fmt::format("{}: there is no setting '{}'; there are: {}, and sections [cell.NAME]", source, key, names));
}

std::string SourceOf(std::string const& path, toml::source_region const& region) {
    return fmt::format("{}:{}", path, region.begin.line);
}

void ReadSetting(std::string const& path, toml::key const& key, toml::node const& node, SettingValues& values) {
    std::string const source = SourceOf(path, key.source());
    auto const& all = AllSettings();
    auto const* const setting =
        std::find_if(all.begin(), all.end(), [&](Setting const& each) { return key.str() == each.name; });
    if (setting == all.end()) {
        FailUnknown(source, key.str());
    }
    values.at(static_cast<std::size_t>(setting - all.begin())) = SettingValue{TextOf(node, *setting, source), source};
}

Cell ReadCell(std::string const& path, toml::key const& name, toml::node const& node) {
    Cell cell{std::string(name.str()), SourceOf(path, name.source()), {}};
    if (!node.is_table()) {
        throw InputError(fmt::format("{}: a cell is a section such as [cell.press1]", cell.source));
    }
    for (auto const& [key, value] : *node.as_table()) {
        ReadSetting(path, key, value, cell.values);
    }
    // Taken from elsewhere, the host would be that of another machine.
    if (!cell.values.front()) {
        throw InputError(fmt::format("{}: the cell {} has no host", cell.source, cell.name));
    }
    return cell;
}

std::vector<Cell> ReadCells(std::string const& path, toml::node const& node) {
    if (!node.is_table()) {
        throw InputError(fmt::format("{}: a cell is a section such as [cell.press1]", SourceOf(path, node.source())));
    }
    std::vector<Cell> cells;
    for (auto const& [name, section] : *node.as_table()) {
        cells.push_back(ReadCell(path, name, section));
    }
    return cells;
}

} // namespace

std::array<Setting, SettingCount> const& AllSettings() {
    static constexpr std::array<Setting, SettingCount> All{{
        {"host", false, "host = \"192.168.255.1\"", CheckHost},
        {"timeout", true, "", CheckTimeout},
        {"retries", true, "", CheckRetries},
        {"generation", false, "generation = \"YA\"", CheckGeneration},
        {"encoding", false, "encoding = \"utf-8\"", CheckEncoding},
    }};
    return All;
}

SettingsContents ReadSettingsFile(std::string const& path) {
    SettingsContents contents;
    for (auto const& [key, node] : ParseFile(path)) {
        if (key.str() == CellsKey) {
            contents.cells = ReadCells(path, node);
        } else {
            ReadSetting(path, key, node, contents.values);
        }
    }
    return contents;
}

Cell const& FindCell(std::vector<Cell> const& cells, std::string_view name, std::string_view file) {
    auto const found = std::find_if(cells.begin(), cells.end(), [&](Cell const& cell) { return cell.name == name; });
    if (found == cells.end()) {
        std::vector<std::string> names;
        std::transform(cells.begin(), cells.end(), std::back_inserter(names),
                       [](Cell const& cell) { return cell.name; });
        std::string const where = file.empty() ? "without a configuration file" : fmt::format("in {}", file);
        throw InputError(fmt::format("there is no cell '{}' {}{}", name, where, Suggestion(name, names)));
    }
    return *found;
}

} // namespace harvlink::words
