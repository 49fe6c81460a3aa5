#include "Input.h"
#include "simulator/controller/VirtualController.h"
#include "simulator/scene/Scene.h"

// Scene files, and the text of --faults. A scene that is accepted can be applied to the controller that it asks for.

using namespace harvlink;
using namespace harvlink::fuzz;
using namespace harvlink::simulator;

namespace {

void TryFaults(std::string_view text) {
    FaultPlan plan;
    bool const isAccepted = plan.Parse(text).empty();
    auto const isRate = [](double rate) { return rate >= 0.0 && rate <= 1.0; };
    Require(std::ranges::all_of(plan.rates, isRate), "rates are shares");
    Require(!isAccepted || plan.refuseCount > 0, "a count is not zero");
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    auto const text = Input(data, size).TakeText();
    TryFaults(text);
    try {
        auto const scene = Scene::FromText(text, "scene.toml");
        VirtualController controller("127.0.0.1", scene.Options());
        controller.WithParts([&](ControllerParts& parts) {
            scene.ApplyTo(parts);
            Require(parts.model.state.generation == scene.Options().generation, "the controller that was asked for");
        });
        controller.Tick();
    } catch (SceneError const& error) {
        Require(std::string_view(error.what()).starts_with("scene.toml:"), "an error tells the file");
    }
    return 0;
}
