#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <toml++/toml.h>

#include "simulator/scene/SceneError.h"

namespace harvlink::simulator {

/// A value of a scene and its position in the file. Every access states what it expects. Otherwise it throws a
/// SceneError that names file, line and key.
class SceneNode {
public:
    /// `file` is the name of the scene in messages. Both must outlive the node.
    SceneNode(toml::table const& root, std::string const& file) : node_(&root), file_(&file) {}

    [[noreturn]] void Fail(std::string_view what) const;

    std::int64_t Integer(std::int64_t lowest, std::int64_t highest) const;
    double Number() const;
    double Number(double lowest, double highest) const;
    bool Flag() const;
    std::string const& Text(std::size_t maxLength = std::numeric_limits<std::size_t>::max()) const;

    /// The position of the text in a list of allowed words.
    std::size_t Choice(std::initializer_list<std::string_view> words) const;

    std::vector<SceneNode> Items() const;

    /// The keys of a table, each with its value, sorted by key.
    std::vector<std::pair<std::string, SceneNode>> Entries() const;

    /// Like Entries, for a table whose keys are numbers from `lowest` to `highest`.
    std::vector<std::pair<std::size_t, SceneNode>> NumberedEntries(std::size_t lowest, std::size_t highest) const;

    /// A value of a table. Nothing if the table has no such key.
    std::optional<SceneNode> Find(std::string_view key) const;
    SceneNode Require(std::string_view key) const;

    /// Fails at the first key that is not one of these, so that typing errors are found.
    void AllowOnly(std::initializer_list<std::string_view> keys) const;

private:
    SceneNode(toml::node const& node, std::string path, std::string const& file)
        : node_(&node), path_(std::move(path)), file_(&file) {}

    toml::table const& Table() const;
    SceneNode Child(std::string_view key, toml::node const& node) const;

    toml::node const* node_;
    std::string path_;
    std::string const* file_;
};

} // namespace harvlink::simulator
