#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace harvlink::words {

inline constexpr std::size_t SettingCount = 5;

/// A setting of a connection. The file has numbers as they are and texts in quotes.
struct Setting {
    std::string_view name; ///< its key in the file
    bool isNumber;
    std::string_view example; ///< of a text, as the file has it
    void (*check)(std::string const& text); ///< throws InputError
};

/// host, timeout, retries, generation, encoding.
std::array<Setting, SettingCount> const& AllSettings();

struct SettingValue {
    std::string text;
    std::string source; ///< "/.../config.toml:3"
};

/// In the order of AllSettings; a setting that the file does not have is empty.
using SettingValues = std::array<std::optional<SettingValue>, SettingCount>;

/// A controller that the file gives a name, in a section such as [cell.press1]. It has a host; what else it does not have,
/// it takes from the settings before the first section.
struct Cell {
    std::string name;
    std::string source; ///< "/.../config.toml:7", its first line
    SettingValues values;
};

struct SettingsContents {
    SettingValues values; ///< for every controller
    std::vector<Cell> cells; ///< by name
};

/// Throws InputError that names the file and the line. The values themselves are not checked: another source may win.
SettingsContents ReadSettingsFile(std::string const& path);

/// The cell with this name. Throws InputError if there is none, which names the one that is nearest; `file` is for its text.
Cell const& FindCell(std::vector<Cell> const& cells, std::string_view name, std::string_view file);

} // namespace harvlink::words
