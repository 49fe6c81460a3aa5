#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace harvlink::cli {

/// What a user would otherwise repeat with every command. Each setting comes from its option, else from its environment
/// variable, else from the configuration file, else it is built in.
class Settings {
public:
    static constexpr std::size_t Count = 4;

    /// One setting as it counts, and where it came from: "--host", "HARVLINK_HOST", "/.../config.toml:3" or "built-in".
    struct Effective {
        std::string name;
        std::string value; ///< empty: none
        std::string source;
    };

    struct Connection {
        std::string host; ///< empty: none was named
        unsigned timeoutMilliseconds = 0;
        unsigned retries = 0;
        std::string generation; ///< the only one to talk to; empty: any
    };

    void AddOptions(CLI::App& app);

    /// In the order in which the help names them. Throws InputError that names the source of a bad value.
    std::vector<Effective> Resolve() const;

    /// The same values, for use.
    Connection ForConnection() const;

    /// The configuration file that is read if it exists; one that the user named must exist. Empty if there is no place
    /// for it.
    std::string File() const;

private:
    struct FileValue {
        std::string text;
        std::string source;
    };
    using FileValues = std::array<std::optional<FileValue>, Count>;

    FileValues ReadFile() const;

    std::array<CLI::Option const*, Count> options_{};
    std::array<std::string, Count> given_;
    std::string namedFile_;
};

} // namespace harvlink::cli
