#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "simulator/controller/ControllerOptions.h"
#include "simulator/scene/SceneError.h"

namespace harvlink::simulator {

struct ControllerParts;

/// What a controller is like when it is switched on, read from a TOML file: simulator/scenes/example.toml shows all there
/// is. Reading and applying throw a SceneError that names file, line and key.
class Scene {
public:
    /// Reads a scene and tries it out. A path in it is relative to the scene's own folder.
    static Scene FromFile(std::filesystem::path const& path);

    /// The same from text; `name` stands for the file in messages.
    static Scene FromText(std::string_view text, std::string name);

    Scene(Scene&&) noexcept;
    Scene& operator=(Scene&&) noexcept;
    ~Scene();

    /// What the controller must be built as.
    ControllerOptions const& Options() const { return options_; }

    /// Sets everything else. Fails if the controller was built as something that lacks what the scene sets.
    void ApplyTo(ControllerParts& parts) const;

private:
    struct Document;

    Scene(std::unique_ptr<Document> document, std::filesystem::path const& folder);

    std::unique_ptr<Document> document_;
    ControllerOptions options_;
};

} // namespace harvlink::simulator
