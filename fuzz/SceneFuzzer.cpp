#include "Input.h"
#include "simulator/controller/VirtualController.h"
#include "simulator/scene/Scene.h"

// Scene files, and the text of --faults. An accepted scene can be applied to a controller with its options.

namespace harvlink::fuzz {

using simulator::ControllerParts;
using simulator::FaultPlan;
using simulator::Scene;
using simulator::SceneError;
using simulator::VirtualController;

namespace {

void TryFaults(std::string_view text) {
    FaultPlan plan;
    bool const isAccepted = plan.Parse(text).empty();
    auto const isRate = [](double rate) { return rate >= 0.0 && rate <= 1.0; };
    Require(std::ranges::all_of(plan.rates, isRate), "rates are from 0 to 1");
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
            Require(parts.model.state.generation == scene.Options().generation,
                    "the controller has the generation of the scene");
        });
        controller.Tick();
    } catch (SceneError const& error) {
        Require(std::string_view(error.what()).starts_with("scene.toml:"), "an error names the file");
    }
    return 0;
}

} // namespace harvlink::fuzz
