#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <toml++/toml.h>

namespace harvlink::gateway {

/// Where the problems of a file are collected.
struct Problems {
    std::string file;
    std::filesystem::path folder; ///< of the file: paths in it are relative to this
    std::multimap<std::uint32_t, std::string> texts; ///< by line

    void Add(toml::source_region const& where, std::string const& what);
};

/// Reads the keys of a section of the file. Each reader leaves its output alone if the key is not there, and adds a problem if
/// its value is wrong. Finish adds a problem for each key that nobody has asked for.
class Section {
public:
    Section(toml::table const& table, std::string title, Problems& problems);

    bool Has(char const* key) const { return table_.contains(key); }
    void Text(char const* key, std::string& text);
    /// Adds a problem with what `check` throws as InputError.
    void Text(char const* key, std::function<void(std::string const&)> const& check);
    /// A text or a list of texts.
    void Texts(char const* key, std::function<void(std::string const&)> const& use);
    void Flag(char const* key, bool& flag);
    void Number(char const* key, std::int64_t least, std::int64_t most, std::function<void(std::int64_t)> const& use);
    void Real(char const* key, double least, double most, double& number);
    void Duration(char const* key, std::chrono::microseconds least, std::chrono::microseconds most,
                  std::function<void(std::chrono::microseconds)> const& use);
    void Size(char const* key, std::uint64_t least, std::uint64_t& bytes);
    void Path(char const* key, std::filesystem::path& path);
    /// The same for a file that must be readable. True if it is there and is.
    bool File(char const* key, std::filesystem::path& path);
    /// Adds a problem with what `check` throws as InputError.
    void Try(char const* key, std::function<void()> const& check);
    /// A section within this one; null if it is not there.
    toml::table const* Child(char const* key);
    /// The value itself; null if it is not there.
    toml::node const* Node(char const* key);

    void Refuse(char const* key, std::string const& what); ///< at the line of the key, or of the section
    void Refuse(toml::node const& node, char const* key, std::string const& what);
    void Require(char const* key);
    void Finish();

    std::string const& Title() const { return title_; }
    toml::table const& Table() const { return table_; }

private:
    template <typename Use>
    void Try(toml::node const& node, char const* key, Use const& use);

    toml::table const& table_;
    std::string title_;
    Problems& problems_;
    std::vector<std::string> asked_;
};

} // namespace harvlink::gateway
