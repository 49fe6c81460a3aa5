#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace harvlink::words {

inline constexpr std::size_t SettingCount = 4;

/// A setting of a connection. The file has numbers as they are and texts in quotes.
struct Setting {
    std::string_view name; ///< its key in the file
    bool isNumber;
    std::string_view example; ///< of a text, as the file has it
    void (*check)(std::string const& text); ///< throws InputError
};

/// host, timeout, retries, generation.
std::array<Setting, SettingCount> const& AllSettings();

struct SettingValue {
    std::string text;
    std::string source; ///< "/.../config.toml:3"
};

/// In the order of AllSettings; a setting that the file does not have is empty.
using SettingValues = std::array<std::optional<SettingValue>, SettingCount>;

/// Throws InputError that names the file and the line. The values themselves are not checked: another source may win.
SettingValues ReadSettingsFile(std::string const& path);

} // namespace harvlink::words
