#pragma once

#include <memory>

#include "simulator/handlers/CommandHandler.h"

/// @file
/// The handlers, one per interface, each defined in the .cpp of its name. A handler is given the parts of the controller
/// that it translates for, and no more.

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
