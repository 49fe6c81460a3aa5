#include <limits>

#include "simulator/model/ControllerModel.h"
#include "simulator/scene/SceneSections.h"

namespace harvlink::simulator {

void ApplySignals(SceneNode const& signals, ControllerModel& model) {
    for (auto const& [address, node] : signals.NumberedEntries(0, 99999)) {
        if (!model.signals.Write(static_cast<std::uint32_t>(address), node.Flag())) {
            node.Fail("a signal with this address does not exist");
        }
    }
}

void ApplySignalGroups(SceneNode const& groups, ControllerModel& model) {
    for (auto const& [group, node] : groups.NumberedEntries(0, 9999)) {
        auto const value = node.Integer(0, std::numeric_limits<std::uint8_t>::max());
        if (!model.signals.WriteGroup(static_cast<std::uint32_t>(group), static_cast<std::uint8_t>(value))) {
            node.Fail("a signal group with this number does not exist");
        }
    }
}

void ApplyRegisters(SceneNode const& registers, ControllerModel& model) {
    for (auto const& [index, node] : registers.NumberedEntries(0, model.registers.size() - 1)) {
        auto const value = node.Integer(0, std::numeric_limits<std::uint16_t>::max());
        model.registers[index] = static_cast<std::uint16_t>(value);
    }
}

} // namespace harvlink::simulator
