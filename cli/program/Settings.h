#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

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

    std::string cell{}; ///< the name by which the controller was given; empty: none
    std::string file{}; ///< is read if it exists; empty if the environment names no folder for it
    std::array<Entry, SettingCount> entries{}; ///< in the order in which the help names them

    std::string host{}; ///< empty: none was named
    unsigned timeoutMilliseconds = 0;
    unsigned retries = 0;
    std::string generation{}; ///< the only one to talk to; empty: any
    std::string encoding{}; ///< of the controller's texts
};

/// What is wrong with the value of a setting; empty if nothing is.
std::string ProblemOf(Setting const& setting, std::string const& text);

/// The options from which settings come. Each setting comes from its option, else from the cell that --cell names, else from
/// its environment variable, else from the configuration file, else it is built in.
class SettingsOptions {
public:
    void Add(CLI::App& app);

    /// Whether --all was given, or --cell more than once.
    bool NameSeveralCells() const { return all_ || cells_.size() > 1; }

    /// The cells that --cell names, or with --all those of the file by name. Empty if neither was given. Throws InputError for
    /// a cell that is named twice, if the file has no cells, and if --host or a second way to name cells contradicts them.
    std::vector<std::string> NamedCells() const;

    /// Reads the environment and the file. Throws InputError that names the source of a bad value, and for an unknown cell. An
    /// empty cell stands for none.
    Settings Resolve(std::string const& cell) const;

    /// The cells that the file has, by name.
    std::vector<Cell> const& Cells() const { return FromFile().cells; }

private:
    std::string File() const;
    SettingsContents const& FromFile() const;
    Settings::Entry ResolveEntry(std::size_t index, SettingsContents const& file, Cell const* cell) const;

    std::array<CLI::Option const*, SettingCount> options_{};
    std::array<std::string, SettingCount> given_;
    std::string namedFile_;
    std::vector<std::string> cells_;
    bool all_ = false;
    mutable std::optional<SettingsContents> contents_; ///< of the file, which is read once: all cells are of one moment
};

} // namespace harvlink::cli
