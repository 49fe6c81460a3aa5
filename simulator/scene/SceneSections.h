#pragma once

#include <filesystem>

#include "simulator/controller/ControllerOptions.h"
#include "simulator/scene/SceneNode.h"

/// @file
/// The sections of a scene. Each function reads one section, checks it and applies it.

namespace harvlink::simulator {

class ControllerModel;
class FileStore;

ControllerOptions ReadControllerOptions(SceneNode const& controller, std::filesystem::path const& folder);
FaultPlan ReadFaults(SceneNode const& faults);

void ApplyControllerState(SceneNode const& controller, ControllerModel& model);
void ApplyVariables(SceneNode const& variables, ControllerModel& model);
void ApplySignals(SceneNode const& signals, ControllerModel& model);
void ApplySignalGroups(SceneNode const& groups, ControllerModel& model);
void ApplyRegisters(SceneNode const& registers, ControllerModel& model);
void ApplyParameters(SceneNode const& parameters, ControllerModel& model);
void ApplyTools(SceneNode const& tools, ControllerModel& model);
void ApplyUserFrames(SceneNode const& frames, ControllerModel& model);
void ApplyFiles(SceneNode const& files, FileStore& store);
void ApplyAlarms(SceneNode const& alarms, ControllerModel& model);

} // namespace harvlink::simulator
