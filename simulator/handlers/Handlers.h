#pragma once

#include <memory>

#include "simulator/handlers/CommandHandler.h"

/// @file
/// The handlers, one per interface. Each is defined in the .cpp file with its name and gets only the parts of the
/// controller that it needs.

namespace harvlink::simulator {

class ControllerModel;
class FileStore;
class JobEngine;
class MotionEngine;

std::unique_ptr<CommandHandler> MakeControllerStateHandler(ControllerModel& model);
std::unique_ptr<CommandHandler> MakeVariablesHandler(ControllerModel& model);
std::unique_ptr<CommandHandler> MakeIOHandler(ControllerModel& model);
std::unique_ptr<CommandHandler> MakeFaultHandler(ControllerModel& model);
std::unique_ptr<CommandHandler> MakeControlCommandsHandler(ControllerModel& model, JobEngine& jobs);
std::unique_ptr<CommandHandler> MakeControlGroupHandler(ControllerModel const& model, MotionEngine const& motion);
std::unique_ptr<CommandHandler> MakeMotionManagerHandler(MotionEngine& motion);
std::unique_ptr<CommandHandler> MakeKinematicsHandler(ControllerModel const& model, MotionEngine const& motion);
std::unique_ptr<CommandHandler> MakeJobHandler(JobEngine& jobs);
std::unique_ptr<CommandHandler> MakeFileHandler(FileStore& files);

} // namespace harvlink::simulator
