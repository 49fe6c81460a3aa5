#include "simulator/scene/SceneNode.h"

#include <algorithm>
#include <charconv>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace harvlink::simulator {

void SceneNode::Fail(std::string_view what) const {
    throw SceneError(
        fmt::format("{}:{}: {}: {}", *file_, node_->source().begin.line, path_.empty() ? "scene" : path_, what));
}

std::int64_t SceneNode::Integer(std::int64_t lowest, std::int64_t highest) const {
    auto const* const value = node_->as_integer();
    if (value == nullptr || value->get() < lowest || value->get() > highest) {
        Fail(fmt::format("must be a whole number from {} to {}", lowest, highest));
    }
    return value->get();
}

double SceneNode::Number() const {
    auto const value = node_->value<double>();
    if (!node_->is_number() || !value) {
        Fail("must be a number");
    }
    return *value;
}

double SceneNode::Number(double lowest, double highest) const {
    auto const value = Number();
    if (!(value >= lowest && value <= highest)) {
        Fail(fmt::format("must be a number from {} to {}", lowest, highest));
    }
    return value;
}

bool SceneNode::Flag() const {
    auto const* const value = node_->as_boolean();
    if (value == nullptr) {
        Fail("must be true or false");
    }
    return value->get();
}

std::string const& SceneNode::Text(std::size_t maxLength) const {
    auto const* const value = node_->as_string();
    if (value == nullptr) {
        Fail("must be a text");
    }
    if (value->get().size() > maxLength) {
        Fail(fmt::format("must not be longer than {} bytes", maxLength));
    }
    return value->get();
}

std::size_t SceneNode::Choice(std::initializer_list<std::string_view> words) const {
    auto const* const found = std::ranges::find(words, std::string_view(Text()));
    if (found == words.end()) {
        Fail(fmt::format("must be one of: {}", fmt::join(words, ", ")));
    }
    return static_cast<std::size_t>(found - words.begin());
}

std::vector<SceneNode> SceneNode::Items() const {
    auto const* const array = node_->as_array();
    if (array == nullptr) {
        Fail("must be a list");
    }
    std::vector<SceneNode> items;
    for (auto const& item : *array) {
        items.push_back(SceneNode(item, fmt::format("{}[{}]", path_, items.size()), *file_));
    }
    return items;
}

std::vector<std::pair<std::string, SceneNode>> SceneNode::Entries() const {
    std::vector<std::pair<std::string, SceneNode>> entries;
    for (auto const& [key, value] : Table()) {
        entries.emplace_back(std::string(key.str()), Child(key.str(), value));
    }
    return entries;
}

std::vector<std::pair<std::size_t, SceneNode>> SceneNode::NumberedEntries(std::size_t lowest,
                                                                          std::size_t highest) const {
    std::vector<std::pair<std::size_t, SceneNode>> entries;
    for (auto const& [key, value] : Entries()) {
        std::size_t number = 0;
        auto const* const keyEnd = key.data() + key.size();
        auto const [end, error] = std::from_chars(key.data(), keyEnd, number);
        if (error != std::errc{} || end != keyEnd || number < lowest || number > highest) {
            value.Fail(fmt::format("there are only the numbers {} to {}", lowest, highest));
        }
        entries.emplace_back(number, value);
    }
    return entries;
}

std::optional<SceneNode> SceneNode::Find(std::string_view key) const {
    auto const* const value = Table().get(key);
    if (value == nullptr) {
        return std::nullopt;
    }
    return Child(key, *value);
}

SceneNode SceneNode::Require(std::string_view key) const {
    auto const found = Find(key);
    if (!found) {
        Fail(fmt::format("needs the key '{}'", key));
    }
    return *found;
}

void SceneNode::AllowOnly(std::initializer_list<std::string_view> keys) const {
    for (auto const& [key, value] : Entries()) {
        if (std::ranges::find(keys, std::string_view(key)) == keys.end()) {
            value.Fail(fmt::format("unknown key, expected one of: {}", fmt::join(keys, ", ")));
        }
    }
}

toml::table const& SceneNode::Table() const {
    auto const* const table = node_->as_table();
    if (table == nullptr) {
        Fail("must be a table");
    }
    return *table;
}

SceneNode SceneNode::Child(std::string_view key, toml::node const& node) const {
    return {node, path_.empty() ? std::string(key) : fmt::format("{}.{}", path_, key), *file_};
}

} // namespace harvlink::simulator
