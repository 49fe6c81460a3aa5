#pragma once

#include <span>

#include "simulator/protocol/Reply.h"
#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

/// Answers the commands of one interface.
///
/// Before a request reaches a handler, the dispatcher has refused what the catalogue (protocol/Catalogue.cpp) forbids: a command
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

} // namespace harvlink::simulator
