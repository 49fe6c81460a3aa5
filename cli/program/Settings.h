#pragma once

#include <array>
#include <string>

#include "cli/output/Words.h"
#include "words/settings/SettingsFile.h"

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace harvlink::cli {

/// The settings of one command: what a user would otherwise repeat with every command.
struct Settings {
    /// One setting as it applies, and where it came from: "--host", "HARVLINK_HOST", "/.../config.toml:3" or "built-in".
    struct Entry {
        std::string name;
        std::string value; ///< empty: none
        std::string source;
    };

    std::string file; ///< is read if it exists; empty if the environment names no folder for it
    std::array<Entry, SettingCount> entries{}; ///< in the order in which the help names them

    std::string host{}; ///< empty: none was named
    unsigned timeoutMilliseconds = 0;
    unsigned retries = 0;
    std::string generation{}; ///< the only one to talk to; empty: any
};

/// The options from which settings come. Each setting comes from its option, else from its environment variable, else from
/// the configuration file, else it is built in.
class SettingsOptions {
public:
    void Add(CLI::App& app);

    /// Reads the environment and the file. Throws InputError that names the source of a bad value.
    Settings Resolve() const;

private:
    std::string File() const;
    SettingValues ReadFile() const;
    Settings::Entry ResolveEntry(std::size_t index, SettingValues const& file) const;

    std::array<CLI::Option const*, SettingCount> options_{};
    std::array<std::string, SettingCount> given_;
    std::string namedFile_;
};

} // namespace harvlink::cli
