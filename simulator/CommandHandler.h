#pragma once

#include <memory>
#include <span>

#include "simulator/Reply.h"
#include "simulator/Request.h"

namespace harvlink::simulator {

class ControllerModel;

/// Answers the commands of one interface.
///
/// Before a request reaches a handler, the dispatcher has refused what the catalogue (Catalogue.cpp) forbids: a command
/// that the generation doesn't know, an instance outside the catalogue's range, an attribute and service that don't go
/// with the command, a payload of a wrong size. What depends on the model (a group that isn't there, a variable beyond
/// the last, a wrong mode) is the handler's.
///
/// Handlers run on the server's thread with the controller locked. They don't block.
class CommandHandler {
public:
    CommandHandler() = default;
    CommandHandler(CommandHandler const&) = delete;
    CommandHandler& operator=(CommandHandler const&) = delete;
    virtual ~CommandHandler() = default;

    /// The commands that are this handler's, each of which belongs to one handler only. The handler of the file port has
    /// none: all that arrives there is its own.
    virtual std::span<CommandNumber const> Commands() const = 0;

    /// Fills `reply`, which comes as a success without payload.
    virtual void Handle(Request const& request, Reply& reply) = 0;
};

/// One per interface, each defined in the .cpp of its handler in simulator/handlers/.
std::unique_ptr<CommandHandler> MakeControllerStateHandler(ControllerModel& model);
std::unique_ptr<CommandHandler> MakeVariablesHandler(ControllerModel& model);
std::unique_ptr<CommandHandler> MakeIOHandler(ControllerModel& model);
std::unique_ptr<CommandHandler> MakeFaultHandler(ControllerModel& model);
std::unique_ptr<CommandHandler> MakeControlCommandsHandler(ControllerModel& model);
std::unique_ptr<CommandHandler> MakeControlGroupHandler(ControllerModel& model);
std::unique_ptr<CommandHandler> MakeMotionManagerHandler(ControllerModel& model);
std::unique_ptr<CommandHandler> MakeKinematicsHandler(ControllerModel& model);
std::unique_ptr<CommandHandler> MakeJobHandler(ControllerModel& model);
std::unique_ptr<CommandHandler> MakeFileHandler(ControllerModel& model);

} // namespace harvlink::simulator
