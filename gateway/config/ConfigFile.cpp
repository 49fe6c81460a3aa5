#include "gateway/config/ConfigFile.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

#include <fmt/format.h>
#include <toml++/toml.h>

#include "gateway/config/Sections.h"
#include "words/text/Nearest.h"

namespace harvlink::gateway {

namespace {

constexpr std::uintmax_t LargestFile = 16U << 20;

/// What the sections before have named.
struct Known {
    std::set<std::string> names;
    std::set<std::string> hosts;
    std::set<std::string> wrongPolls; ///< something of them has been refused already
};

void ReadPolls(Section& root, Config& config, Known& known, Problems& problems) {
    toml::table const* const polls = root.Child("poll");
    if (polls == nullptr) {
        return;
    }
    for (auto const& [key, node] : *polls) {
        std::string const name(key.str());
        std::size_t const before = problems.texts.size();
        if (!node.is_table()) {
            root.Refuse(node, "poll", fmt::format("{} must be a section such as [poll.{}]", name, name));
            continue;
        }
        Section section(*node.as_table(), fmt::format("[poll.{}]", name), problems);
        constexpr char const* Letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-";
        if (name.empty() || name.find_first_not_of(Letters) != std::string::npos) {
            root.Refuse(node, "poll", fmt::format("'{}' is not a name of letters, digits, _ and -", name));
        }
        config.polls.push_back(ReadPoll(section, name));
        if (problems.texts.size() > before) {
            known.wrongPolls.insert(name);
        }
    }
}

/// Whether the fleet would take it, which also knows what a generation does not have.
void CheckWithFleet(Section& section, Config const& config, ControllerConfig controller) {
    Fleet fleet({.queueCapacity = 2, .eventCapacity = 2});
    controller.options.address = "127.0.0.1"; // a name is not resolved for that
    StatusInfo const status = fleet.Add(controller.name, controller.options, config.GroupsOf(controller));
    if (status.StatusCode != 0) {
        section.Refuse("poll", status.Message);
    }
}

void CheckController(Section& section, ControllerConfig const& controller, Known& known) {
    if (!controller.name.empty() && !known.names.insert(controller.name).second) {
        section.Refuse("name", fmt::format("there are two controllers '{}'", controller.name));
    }
    if (!controller.options.address.empty() && !known.hosts.insert(controller.options.address).second) {
        section.Refuse("host", fmt::format("two controllers have the host {}", controller.options.address));
    }
}

void CheckPolls(Section& section, Config const& config, std::vector<std::string> const& polls) {
    std::vector<std::string> names;
    std::transform(config.polls.begin(), config.polls.end(), std::back_inserter(names),
                   [](PollConfig const& poll) { return poll.name; });
    std::set<std::string> seen;
    for (std::string const& poll : polls) {
        if (std::find(names.begin(), names.end(), poll) == names.end()) {
            section.Refuse("poll",
                           fmt::format("there is no section [poll.{}]{}", poll, words::Suggestion(poll, names)));
        } else if (!seen.insert(poll).second) {
            section.Refuse("poll", fmt::format("'{}' is there twice", poll));
        }
    }
}

/// Of a section; all of a range are read alike.
void ReadControllersOf(Section& section, Config& config, Known& known, Problems& problems) {
    std::size_t const before = problems.texts.size();
    std::vector<std::string> polls;
    std::vector<ControllerConfig> const controllers = ReadControllers(section, polls, problems);
    CheckPolls(section, config, polls);
    for (ControllerConfig const& controller : controllers) {
        CheckController(section, controller, known);
        config.controllers.push_back(controller);
    }
    bool const areRight = std::none_of(polls.begin(), polls.end(),
                                       [&](std::string const& poll) { return known.wrongPolls.contains(poll); });
    if (areRight && problems.texts.size() == before && !controllers.empty()) {
        CheckWithFleet(section, config, controllers.front());
    }
}

void ReadAllControllers(Section& root, Config& config, Known& known, Problems& problems) {
    toml::node const* const node = root.Node("controller");
    if (node == nullptr) {
        return;
    }
    if (!node->is_array_of_tables()) {
        root.Refuse(*node, "controller", "controllers are sections such as [[controller]], with two brackets");
        return;
    }
    for (toml::node const& element : *node->as_array()) {
        Section section(*element.as_table(), "[[controller]]", problems);
        ReadControllersOf(section, config, known, problems);
    }
}

void ReadSections(toml::table const& table, Config& config, Problems& problems, bool needsControllers) {
    Section root(table, "", problems);
    if (toml::table const* const gateway = root.Child("gateway"); gateway != nullptr) {
        Section section(*gateway, "[gateway]", problems);
        ReadGateway(section, config.gateway);
    }
    Known known;
    ReadPolls(root, config, known, problems);
    ReadAllControllers(root, config, known, problems);
    if (toml::table const* const prometheus = root.Child("prometheus"); prometheus != nullptr) {
        Section section(*prometheus, "[prometheus]", problems);
        ReadPrometheus(section, config.prometheus);
    }
    if (toml::table const* const mqtt = root.Child("mqtt"); mqtt != nullptr) {
        Section section(*mqtt, "[mqtt]", problems);
        ReadMqtt(section, config.gateway, config.mqtt.emplace(), problems);
    }
    if (toml::table const* const recording = root.Child("recording"); recording != nullptr) {
        Section section(*recording, "[recording]", problems);
        ReadRecording(section, config.recording.emplace(), problems);
    }
    root.Finish();
    if (config.controllers.empty() && needsControllers && problems.texts.empty()) {
        problems.texts.emplace(
            0, fmt::format("{}: there is no [[controller]]; --print-example shows how a file looks", problems.file));
    }
}

std::string ReadFile(std::filesystem::path const& file) {
    std::error_code error;
    auto const size = std::filesystem::file_size(file, error);
    std::ifstream stream(file, std::ios::binary);
    if (error || !stream) {
        throw ConfigError({fmt::format("can't read {}: {}", file.string(), error ? error.message() : "no permission")});
    }
    if (size > LargestFile) {
        throw ConfigError({fmt::format("{} has more than 16 MB", file.string())});
    }
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

Config ParseConfig(std::string_view text, std::filesystem::path const& name, bool needsControllers) {
    Problems problems{name.string(), name.parent_path(), {}};
    Config config;
    try {
        ReadSections(toml::parse(text), config, problems, needsControllers);
    } catch (toml::parse_error const& error) {
        problems.Add(error.source(), std::string(error.description()));
    }
    if (!problems.texts.empty()) {
        std::vector<std::string> texts;
        std::transform(problems.texts.begin(), problems.texts.end(), std::back_inserter(texts),
                       [](auto& problem) { return std::move(problem.second); });
        throw ConfigError(std::move(texts));
    }
    return config;
}

Config ReadConfigFile(std::filesystem::path const& file, bool needsControllers) {
    return ParseConfig(ReadFile(file), file, needsControllers);
}

} // namespace harvlink::gateway
