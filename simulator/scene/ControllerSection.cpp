#include <algorithm>

#include "simulator/model/ControllerModel.h"
#include "simulator/model/Generation.h"
#include "simulator/scene/SceneSections.h"

namespace harvlink::simulator {

namespace {

ControllerVersion ReadGeneration(SceneNode const& node) {
    auto const generation = GenerationFromName(node.Text());
    if (!generation) {
        node.Fail("must be one of: " + GenerationNames());
    }
    return *generation;
}

std::vector<ControlGroup> ReadGroups(SceneNode const& node) {
    std::vector<ControlGroup> groups;
    for (auto const& item : node.Items()) {
        auto const group = ControlGroups::FromText(item.Text());
        if (!group) {
            item.Fail("must be a control group such as R1, B1 or S12, or with a number of axes R1:7");
        }
        if (std::ranges::find(groups, group->id, &ControlGroup::id) != groups.end()) {
            item.Fail("is already in the list");
        }
        groups.push_back(*group);
    }
    if (groups.empty()) {
        node.Fail("must name at least one control group");
    }
    return groups;
}

} // namespace

ControllerOptions ReadControllerOptions(SceneNode const& controller, std::filesystem::path const& folder) {
    controller.AllowOnly({"generation", "rs022", "groups", "files", "tools", "time_scale", "mode", "cycle", "servo",
                          "hold", "error", "pendant"});
    ControllerOptions options;
    if (auto const node = controller.Find("generation")) {
        options.generation = ReadGeneration(*node);
    }
    if (auto const node = controller.Find("rs022")) {
        options.rs022 = static_cast<int>(node->Integer(0, 1));
    }
    if (auto const node = controller.Find("groups")) {
        options.groups = ReadGroups(*node);
    }
    if (auto const node = controller.Find("files")) {
        options.filesFolder = folder / node->Text();
    }
    if (auto const node = controller.Find("tools")) {
        options.toolCount = static_cast<std::uint32_t>(node->Integer(1, 64));
    }
    if (auto const node = controller.Find("time_scale")) {
        options.timeScale = node->Number(SlowestTimeScale, FastestTimeScale);
    }
    return options;
}

FaultPlan ReadFaults(SceneNode const& faults) {
    FaultPlan plan;
    for (auto const& [name, node] : faults.Entries()) {
        if (auto const problem = plan.Set(name, node.Number()); !problem.empty()) {
            node.Fail(problem);
        }
    }
    return plan;
}

void ApplyControllerState(SceneNode const& controller, ControllerModel& model) {
    if (auto const node = controller.Find("mode")) {
        model.SetMode(static_cast<Mode>(node->Choice({"teach", "play", "remote"})));
    }
    if (auto const node = controller.Find("cycle")) {
        model.SetCycle(static_cast<CycleMode>(node->Choice({"step", "cycle", "automatic"})));
    }
    if (auto const node = controller.Find("hold")) {
        model.SetHold(HoldSource::Pendant, node->Flag());
    }
    if (auto const node = controller.Find("error")) {
        model.SetError(node->Flag());
    }
    if (auto const node = controller.Find("servo")) {
        if (node->Flag() && model.state.mode == Mode::Teach) {
            node->Fail("servo power is not possible in teach mode");
        }
        model.SetServo(node->Flag());
    }
    if (auto const node = controller.Find("pendant")) {
        model.pendantText = node->Text(ControllerModel::PendantLength);
    }
}

} // namespace harvlink::simulator
