#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "simulator/controller/ControllerOptions.h"
#include "simulator/scene/SceneError.h"

namespace harvlink::simulator {

struct ControllerParts;

/// The state in which a controller starts, read from a TOML file. simulator/scenes/example.toml shows everything that
/// can be set. Reading and applying throw a SceneError that names file, line and key.
class Scene {
public:
    /// Reads a scene and checks it by applying it to a controller. Paths in it are relative to the folder of the scene.
    static Scene FromFile(std::filesystem::path const& path);

    /// The same from text; `name` stands for the file in messages.
    static Scene FromText(std::string_view text, std::string name);

    /// A change of a running controller: what a scene sets, without what only the start can set. `options` are those with
    /// which that controller was built.
    static Scene ChangeFromText(std::string_view text, std::string name, ControllerOptions const& options);

    Scene(Scene&& other) noexcept;
    Scene& operator=(Scene&& other) noexcept;
    ~Scene();

    /// The options with which the controller must be built.
    ControllerOptions const& Options() const { return options_; }

    /// Sets everything else. Fails if the controller was built without something that the scene sets.
    void ApplyTo(ControllerParts& parts) const;

private:
    struct Document;

    static std::unique_ptr<Document> DocumentFrom(std::string_view text, std::string name);
    Scene(std::unique_ptr<Document> document, std::filesystem::path const& folder);
    Scene(std::unique_ptr<Document> document, ControllerOptions options);

    /// Applies it to a controller of its own.
    void Try() const;

    std::unique_ptr<Document> document_;
    ControllerOptions options_;
};

} // namespace harvlink::simulator
