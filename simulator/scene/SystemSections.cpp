#include <limits>

#include "simulator/files/FileStore.h"
#include "simulator/model/ControllerModel.h"
#include "simulator/scene/SceneSections.h"

namespace harvlink::simulator {

namespace {

TaughtFrame ReadFrame(SceneNode const& node) {
    node.AllowOnly({"name", "pose"});
    TaughtFrame frame;
    frame.isDefined = true;
    if (auto const name = node.Find("name")) {
        frame.name = name->Text(TaughtFrame::NameLength);
    }
    auto const pose = node.Require("pose");
    auto const items = pose.Items();
    if (items.size() != frame.pose.size()) {
        pose.Fail("must be a list of 6 numbers: X, Y, Z in millimetres, Rx, Ry, Rz in degrees");
    }
    for (std::size_t i = 0; i < items.size(); ++i) {
        frame.pose[i] = items[i].Number();
    }
    return frame;
}

} // namespace

void ApplyParameters(SceneNode const& parameters, ControllerModel& model) {
    using Limits = std::numeric_limits<std::int32_t>;
    for (auto const& item : parameters.Items()) {
        item.AllowOnly({"type", "group", "number", "value"});
        auto const type =
            static_cast<std::uint32_t>(item.Require("type").Choice({"S1C", "S2C", "S3C", "S4C", "RS", "S1E", "S2E"}));
        bool const isOfGroup = Parameters::BelongsToGroup(type);
        auto const group = item.Find("group");
        if (group.has_value() != isOfGroup) {
            item.Fail(isOfGroup ? "needs the key 'group'" : "this parameter does not belong to a group");
        }
        auto const refusal = model.parameters.Set(
            static_cast<SystemParameterType>(type),
            group ? static_cast<std::uint32_t>(group->Integer(0, Limits::max())) : 0U,
            static_cast<std::uint32_t>(item.Require("number").Integer(0, Limits::max())),
            static_cast<std::int32_t>(item.Require("value").Integer(Limits::min(), Limits::max())));
        if (refusal != Refusal::None) {
            item.Fail("this parameter does not exist, or not in this group");
        }
    }
}

void ApplyTools(SceneNode const& tools, ControllerModel& model) {
    for (auto const& [number, node] : tools.NumberedEntries(0, model.frames.tools.size() - 1)) {
        model.frames.tools[number] = ReadFrame(node);
    }
}

void ApplyUserFrames(SceneNode const& frames, ControllerModel& model) {
    for (auto const& [number, node] : frames.NumberedEntries(1, TaughtFrames::HighestUser)) {
        model.frames.users[number] = ReadFrame(node);
    }
}

void ApplyFiles(SceneNode const& files, FileStore& store) {
    for (auto const& [name, node] : files.Entries()) {
        auto const refusal = store.Put(name, node.Text());
        if (refusal != Refusal::None) {
            node.Fail("the controller refuses this file: check its name, its size and the number of files");
        }
    }
}

void ApplyAlarms(SceneNode const& alarms, ControllerModel& model) {
    for (auto const& item : alarms.Items()) {
        item.AllowOnly({"code", "subcode", "name", "active"});
        auto const code = static_cast<std::uint32_t>(item.Require("code").Integer(1, 9999));
        auto const subcode = item.Find("subcode");
        auto const active = item.Find("active");
        auto const subcodeNumber = subcode ? static_cast<std::uint32_t>(subcode->Integer(0, 0xFFFF)) : 0U;
        auto const& name = item.Require("name").Text(Alarms::NameLength);
        if (!active || active->Flag()) {
            model.RaiseAlarm(code, subcodeNumber, name);
        } else {
            model.alarms.Record(code, subcodeNumber, name, model.clock.WallTime());
        }
    }
}

} // namespace harvlink::simulator
