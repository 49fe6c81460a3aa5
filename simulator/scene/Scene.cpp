#include "simulator/scene/Scene.h"

#include <array>
#include <fstream>
#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "simulator/controller/ControllerParts.h"
#include "simulator/scene/SceneSections.h"

namespace harvlink::simulator {

struct Scene::Document {
    std::string name;
    toml::table root;

    SceneNode Root() const { return {root, name}; }
};

namespace {

template <void (*Apply)(SceneNode const&, ControllerModel&)>
void OnModel(SceneNode const& node, ControllerParts& parts) {
    Apply(node, parts.model);
}

void OnFiles(SceneNode const& node, ControllerParts& parts) {
    ApplyFiles(node, parts.files);
}

struct Section {
    std::string_view key;
    void (*apply)(SceneNode const&, ControllerParts&);
};

/// In the order of application. Files may depend on parameters, and an alarm switches servo power off.
constexpr std::array Sections{
    Section{"parameters", OnModel<ApplyParameters>},
    Section{"variables", OnModel<ApplyVariables>},
    Section{"signals", OnModel<ApplySignals>},
    Section{"signal_groups", OnModel<ApplySignalGroups>},
    Section{"registers", OnModel<ApplyRegisters>},
    Section{"tools", OnModel<ApplyTools>},
    Section{"user_frames", OnModel<ApplyUserFrames>},
    Section{"files", OnFiles},
    Section{"controller", OnModel<ApplyControllerState>},
    Section{"alarms", OnModel<ApplyAlarms>},
};

std::string ReadText(std::filesystem::path const& path) {
    std::ifstream stream(path, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(stream), {});
    if (!stream.is_open() || stream.bad() || std::filesystem::is_directory(path)) {
        throw SceneError(fmt::format("{}: can't be read", path.string()));
    }
    return text;
}

toml::table Parse(std::string_view text, std::string const& name) {
    try {
        return toml::parse(text);
    } catch (toml::parse_error const& error) {
        throw SceneError(fmt::format("{}:{}: {}", name, error.source().begin.line, error.description()));
    }
}

} // namespace

std::unique_ptr<Scene::Document> Scene::DocumentFrom(std::string_view text, std::string name) {
    auto document = std::make_unique<Document>();
    document->root = Parse(text, name);
    document->name = std::move(name);
    return document;
}

Scene Scene::FromFile(std::filesystem::path const& path) {
    return {DocumentFrom(ReadText(path), path.filename().string()), path.parent_path()};
}

Scene Scene::FromText(std::string_view text, std::string name) {
    return {DocumentFrom(text, std::move(name)), std::filesystem::path()};
}

Scene Scene::ChangeFromText(std::string_view text, std::string name, ControllerOptions const& options) {
    return {DocumentFrom(text, std::move(name)), options};
}

Scene::Scene(std::unique_ptr<Document> document, ControllerOptions options)
    : document_(std::move(document)), options_(std::move(options)) {
    auto const root = document_->Root();
    root.AllowOnly({"controller", "parameters", "variables", "signals", "signal_groups", "registers", "tools",
                    "user_frames", "alarms"});
    if (auto const controller = root.Find("controller")) {
        controller->AllowOnly({"mode", "cycle", "servo", "hold", "error", "pendant"});
    }
    Try();
}

Scene::Scene(std::unique_ptr<Document> document, std::filesystem::path const& folder) : document_(std::move(document)) {
    auto const root = document_->Root();
    root.AllowOnly({"controller", "parameters", "variables", "signals", "signal_groups", "registers", "tools",
                    "user_frames", "files", "alarms", "faults"});
    if (auto const controller = root.Find("controller")) {
        options_ = ReadControllerOptions(*controller, folder);
    }
    if (auto const faults = root.Find("faults")) {
        options_.faults = ReadFaults(*faults);
    }
    Try();
}

void Scene::Try() const {
    Clock const clock = Clock::Manual();
    ControllerParts parts(options_, clock);
    ApplyTo(parts);
}

Scene::Scene(Scene&&) noexcept = default;
Scene& Scene::operator=(Scene&&) noexcept = default;
Scene::~Scene() = default;

void Scene::ApplyTo(ControllerParts& parts) const {
    auto const root = document_->Root();
    for (auto const& section : Sections) {
        if (auto const node = root.Find(section.key)) {
            section.apply(*node, parts);
        }
    }
}

} // namespace harvlink::simulator
