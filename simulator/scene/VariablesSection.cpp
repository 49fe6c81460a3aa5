#include <cmath>
#include <limits>

#include "simulator/model/ControllerModel.h"
#include "simulator/scene/SceneSections.h"

namespace harvlink::simulator {

namespace {

template <typename Value>
void Assign(Value& variable, SceneNode const& node) {
    variable = static_cast<Value>(node.Integer(std::numeric_limits<Value>::min(), std::numeric_limits<Value>::max()));
}

void Assign(float& variable, SceneNode const& node) {
    variable = static_cast<float>(node.Number());
}

void Assign(std::string& variable, SceneNode const& node) {
    variable = node.Text(Variables::MaxStringLength);
}

std::uint32_t ReadType(SceneNode const& node) {
    constexpr auto FirstCartesian = static_cast<std::uint32_t>(CoordinateType::BaseCoordinate);
    auto const choice =
        static_cast<std::uint32_t>(node.Choice({"pulse", "base", "robot", "tool", "user", "master_tool"}));
    return choice == 0 ? 0 : FirstCartesian + choice - 1;
}

/// Pulses are taken as written. Otherwise the first `linearAxes` axes are in millimetres, the others in degrees.
WireAxes ReadAxes(SceneNode const& node, bool isPulse, std::size_t linearAxes) {
    auto const items = node.Items();
    WireAxes axes{};
    if (items.size() > axes.size()) {
        node.Fail("there are only 8 axes");
    }
    for (std::size_t i = 0; i < items.size(); ++i) {
        auto const factor = isPulse ? 1.0 : i < linearAxes ? 1000.0 : 10000.0;
        auto const value = std::round(items[i].Number() * factor);
        if (isPulse && value != items[i].Number()) {
            items[i].Fail("must be a whole number of pulses");
        }
        if (!(std::abs(value) <= std::numeric_limits<std::int32_t>::max())) {
            items[i].Fail("is too large for an axis");
        }
        axes[i] = static_cast<std::int32_t>(value);
    }
    return axes;
}

void Assign(RobotPositionMsg& variable, SceneNode const& node) {
    node.AllowOnly({"type", "axes", "tool", "user", "figure", "extended_figure"});
    variable.coordinateType = ReadType(node.Require("type"));
    variable.axes = ReadAxes(node.Require("axes"), variable.coordinateType == 0, 3);
    auto const number = [&](std::string_view key, std::int64_t highest) {
        auto const value = node.Find(key);
        return value ? static_cast<std::uint32_t>(value->Integer(0, highest)) : 0U;
    };
    variable.toolNumber = number("tool", 63);
    variable.userCoordinateNumber = number("user", static_cast<std::int64_t>(TaughtFrames::HighestUser));
    variable.figure = number("figure", 0x3F);
    variable.extendedFigure = number("extended_figure", 0x1F);
}

void Assign(BasePositionVariableMsg& variable, SceneNode const& node) {
    node.AllowOnly({"type", "axes"});
    variable.coordinateType = ReadType(node.Require("type"));
    variable.axes = ReadAxes(node.Require("axes"), variable.coordinateType == 0, variable.axes.size());
}

void Assign(StationPositionVariableMsg& variable, SceneNode const& node) {
    node.AllowOnly({"axes"});
    variable.axes = ReadAxes(node.Require("axes"), true, 0);
}

template <typename Value>
void ApplyKind(SceneNode const& variables, std::string_view key, std::vector<Value>& list) {
    if (auto const kind = variables.Find(key)) {
        for (auto const& [index, node] : kind->NumberedEntries(0, list.size() - 1)) {
            Assign(list[index], node);
        }
    }
}

} // namespace

void ApplyVariables(SceneNode const& variables, ControllerModel& model) {
    variables.AllowOnly({"B", "I", "D", "R", "S", "P", "BP", "EX", "SP"});
    auto& store = model.variables;
    ApplyKind(variables, "B", store.bytes);
    ApplyKind(variables, "I", store.integers);
    ApplyKind(variables, "D", store.doubleInts);
    ApplyKind(variables, "R", store.reals);
    ApplyKind(variables, "S", store.strings);
    ApplyKind(variables, "P", store.robotPositions);
    ApplyKind(variables, "BP", store.basePositions);
    for (char const* const name : {"EX", "SP"}) {
        ApplyKind(variables, name, store.stationPositions);
    }
}

} // namespace harvlink::simulator
