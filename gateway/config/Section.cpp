#include "gateway/config/Section.h"

#include <algorithm>

#include <fmt/format.h>
#include <unistd.h>

#include "recording/model/TimeText.h"
#include "words/text/InputError.h"
#include "words/text/Nearest.h"

namespace harvlink::gateway {

using words::InputError;

void Problems::Add(toml::source_region const& where, std::string const& what) {
    texts.emplace(where.begin.line, fmt::format("{}:{}: {}", file, where.begin.line, what));
}

Section::Section(toml::table const& table, std::string title, Problems& problems)
    : table_(table), title_(std::move(title)), problems_(problems) {}

void Section::Refuse(toml::node const& node, char const* key, std::string const& what) {
    problems_.Add(node.source(), fmt::format("{}{}{}: {}", title_, title_.empty() ? "" : " ", key, what));
}

void Section::Refuse(char const* key, std::string const& what) {
    toml::node const* const node = table_.get(key);
    Refuse(node != nullptr ? *node : static_cast<toml::node const&>(table_), key, what);
}

toml::node const* Section::Node(char const* key) {
    asked_.emplace_back(key);
    return table_.get(key);
}

void Section::Require(char const* key) {
    if (table_.get(key) == nullptr) {
        Refuse(key, "is missing");
    }
}

template <typename Use>
void Section::Try(toml::node const& node, char const* key, Use const& use) {
    try {
        use();
    } catch (InputError const& error) {
        Refuse(node, key, error.what());
    }
}

void Section::Text(char const* key, std::function<void(std::string const&)> const& check) {
    toml::node const* const node = Node(key);
    if (node == nullptr) {
        return;
    }
    if (!node->is_string()) {
        Refuse(*node, key, "must be a text in quotes");
        return;
    }
    Try(*node, key, [&] { check(node->as_string()->get()); });
}

void Section::Text(char const* key, std::string& text) {
    Text(key, [&](std::string const& given) { text = given; });
}

void Section::Texts(char const* key, std::function<void(std::string const&)> const& use) {
    toml::node const* const node = Node(key);
    if (node == nullptr) {
        return;
    }
    if (node->is_string()) {
        Try(*node, key, [&] { use(node->as_string()->get()); });
        return;
    }
    if (!node->is_array()) {
        Refuse(*node, key, "must be a text in quotes, or a list of such texts");
        return;
    }
    for (toml::node const& element : *node->as_array()) {
        if (element.is_string()) {
            Try(element, key, [&] { use(element.as_string()->get()); });
        } else {
            Refuse(element, key, "each entry must be a text in quotes");
        }
    }
}

void Section::Flag(char const* key, bool& flag) {
    toml::node const* const node = Node(key);
    if (node != nullptr && node->is_boolean()) {
        flag = node->as_boolean()->get();
    } else if (node != nullptr) {
        Refuse(*node, key, "must be true or false, without quotes");
    }
}

void Section::Number(char const* key, std::int64_t least, std::int64_t most,
                     std::function<void(std::int64_t)> const& use) {
    toml::node const* const node = Node(key);
    if (node == nullptr) {
        return;
    }
    if (!node->is_integer()) {
        Refuse(*node, key, "must be a whole number, without quotes");
        return;
    }
    std::int64_t const number = node->as_integer()->get();
    if (number < least || number > most) {
        Refuse(*node, key, fmt::format("{} is out of range, from {} to {}", number, least, most));
        return;
    }
    use(number);
}

void Section::Real(char const* key, double least, double most, double& number) {
    toml::node const* const node = Node(key);
    if (node == nullptr) {
        return;
    }
    if (!node->is_number()) {
        Refuse(*node, key, "must be a number, without quotes");
        return;
    }
    double const given = node->value<double>().value_or(least);
    if (!(given >= least && given <= most)) {
        Refuse(*node, key, fmt::format("{} is out of range, from {} to {}", given, least, most));
        return;
    }
    number = given;
}

void Section::Duration(char const* key, std::chrono::microseconds least, std::chrono::microseconds most,
                       std::function<void(std::chrono::microseconds)> const& use) {
    Text(key, [&](std::string const& text) {
        auto const duration = recording::ParseDuration(text);
        if (duration < least || duration > most) {
            auto const seconds = [](std::chrono::microseconds time) {
                return std::chrono::duration<double>(time).count();
            };
            throw InputError(
                fmt::format("{} is out of range, from {:.3g} to {:.6g} seconds", text, seconds(least), seconds(most)));
        }
        use(duration);
    });
}

void Section::Size(char const* key, std::uint64_t least, std::uint64_t& bytes) {
    Text(key, [&](std::string const& text) {
        auto const size = recording::ParseSize(text);
        if (size < least) {
            throw InputError(fmt::format("{} is less than {}", text, recording::FormatSize(least)));
        }
        bytes = size;
    });
}

void Section::Path(char const* key, std::filesystem::path& path) {
    Text(key, [&](std::string const& text) {
        if (text.empty() || text.find('\0') != std::string::npos) {
            throw InputError("is not the name of a file or folder");
        }
        path = problems_.folder / text;
    });
}

bool Section::File(char const* key, std::filesystem::path& path) {
    Path(key, path);
    if (path.empty() || !Has(key)) {
        return false;
    }
    std::error_code error;
    bool const isReadable = access(path.c_str(), R_OK) == 0 && std::filesystem::is_regular_file(path, error);
    if (!isReadable) {
        Refuse(key, fmt::format("can't read the file {}", path.string()));
    }
    return isReadable;
}

void Section::Try(char const* key, std::function<void()> const& check) {
    try {
        check();
    } catch (InputError const& error) {
        Refuse(key, error.what());
    }
}

toml::table const* Section::Child(char const* key) {
    toml::node const* const node = Node(key);
    if (node != nullptr && !node->is_table()) {
        Refuse(*node, key, "must be a section of its own");
    }
    return node == nullptr ? nullptr : node->as_table();
}

void Section::Finish() {
    for (auto const& [key, node] : table_) {
        std::string const name(key.str());
        if (std::find(asked_.begin(), asked_.end(), name) == asked_.end()) {
            problems_.Add(key.source(), fmt::format("{}{}{}: there is no such key{}", title_, title_.empty() ? "" : " ",
                                                    name, words::Suggestion(name, asked_)));
        }
    }
}

} // namespace harvlink::gateway
